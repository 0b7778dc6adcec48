#include "mail/attachmentlist.h"

namespace qmr {

int AttachmentList::count(const QString& attachments)
{
    if (attachments.contains(QLatin1Char('|')))
        return int(attachments.count(QLatin1Char('|')));
    return attachments.isEmpty() ? 0 : 1;
}

QStringList AttachmentList::paths(const QString& attachments)
{
    if (!attachments.contains(QLatin1Char('|')))
        return attachments.isEmpty() ? QStringList() : QStringList{attachments};
    QStringList paths;
    const QStringList pieces = attachments.split(QLatin1Char('|'));
    // What follows the last mark is not a path: the list ends at its last "|".
    for (int i = 0; i + 1 < pieces.size(); ++i)
        if (!pieces.at(i).isEmpty())
            paths << pieces.at(i);
    return paths;
}

QString AttachmentList::bodyWithRoom(const QString& body, int count)
{
    if (count <= 0)
        return body;
    return QString(count, QLatin1Char(' ')) + QStringLiteral("\r\n") + body;
}

} // namespace qmr
