#include "mail/mailmessage.h"

#include <QRegularExpression>

namespace qmr {

QStringList MailMessage::recipients() const
{
    QStringList list;
    for (const QString& piece : to.split(QRegularExpression(QStringLiteral("[,;]"))))
        if (!piece.trimmed().isEmpty())
            list << piece.trimmed();
    return list;
}

} // namespace qmr
