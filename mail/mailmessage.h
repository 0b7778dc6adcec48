#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace qmr {

// One message as the program writes it, before it becomes MIME text.
struct MailMessage
{
    QString from; // "" leaves the sender to the mail system
    QString to;   // one address, or several separated by "," or ";"
    QString subject;
    QString body;            // with "\r\n" or "\n" line ends
    QStringList attachments; // file paths
    QDateTime date = QDateTime::currentDateTime();
    QString messageId; // "<...@...>"; made when empty

    // The addresses of `to`, trimmed, blanks left out.
    QStringList recipients() const;
};

} // namespace qmr
