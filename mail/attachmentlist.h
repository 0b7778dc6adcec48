#pragma once

#include <QString>
#include <QStringList>

namespace qmr {

// The attachments of a send as one text: paths each ended by "|", or one path alone without
// the mark, or "" for none.
class AttachmentList
{
public:
    // The number of "|" marks; one for a text without any; none for "".
    static int count(const QString& attachments);
    // The paths, empty pieces skipped.
    static QStringList paths(const QString& attachments);
    // With attachments the body starts with as many blanks as there are attachments and a
    // line break: the places where the attachments stand in the message.
    static QString bodyWithRoom(const QString& body, int count);
};

} // namespace qmr
