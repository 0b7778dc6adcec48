#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <optional>

#include "mail/mailmessage.h"

namespace qmr {

// A reason why a message did not go: a number and a text, as the user is shown them.
struct MailFailure
{
    int number = 0;
    QString text;
};

// Writes a message as the one MIME text that both mail routes send: headers with Date and
// Message-ID, non-ASCII header text encoded, the body as quoted-printable UTF-8, and each
// attachment in base64 with the MIME type of its file and its file name. Lines end in CRLF.
class MimeMessage
{
    Q_DECLARE_TR_FUNCTIONS(qmr::MimeMessage)

public:
    // The message text, or the failure (an attachment that cannot be read).
    static QByteArray build(const MailMessage& message, std::optional<MailFailure>* failure);

    // A header value: as it is when plain ASCII, else UTF-8 encoded words, folded.
    static QByteArray encodeHeader(const QString& text);
    static QByteArray quotedPrintable(const QByteArray& utf8);
    static QByteArray rfc2822Date(const QDateTime& date);
    static QString makeMessageId(const QString& from);
};

} // namespace qmr
