#pragma once

#include <QCoreApplication>
#include <QString>
#include <memory>

#include "mail/mailaddress.h"
#include "mail/mailsettings.h"
#include "mail/mailtransport.h"

class QWidget;

namespace qmr {

class Prompter;

// The two send routines: "MAPI" (SendEmail, through sendmail) and "CDONTS" (SendEmailNTS,
// through SMTP), with the four values every caller gives. The body makes room for the
// attachments; the message goes off the GUI thread while a busy pointer (and after a moment a
// busy window with Cancel) shows; then "Message sent." or the failure after the routine's
// prefix. An address that holds a line break or another control character is refused first,
// whoever calls: nothing reaches a transport.
class MailSender
{
    Q_DECLARE_TR_FUNCTIONS(qmr::MailSender)

public:
    explicit MailSender(Prompter& prompter, QWidget* parent = nullptr)
        : m_prompter(prompter), m_parent(parent), m_recipientField(MailAddress::sendToField())
    {
    }

    // Names the field that the recipient came from when its address is refused ('Send to'
    // unless told).
    MailSender& recipientField(const QString& field)
    {
        m_recipientField = field;
        return *this;
    }
    // A refused address is written to the log after `prefix` instead of shown (the page
    // notice has no dialog to show it in).
    MailSender& logRefusals(const QString& prefix)
    {
        m_logPrefix = prefix;
        return *this;
    }

    // True when the message went. An attachment that is a picture too large to open stops
    // the send with a message naming it.
    bool send(const MailSettings& settings, const QString& sendTo, const QString& subject,
              const QString& body, const QString& attachments);

    // The transport of a route; nothing for MailSystem::None.
    static std::unique_ptr<MailTransport> transportFor(const MailSettings& settings);
    // "SendEmail: Error  #" or "SendEmailNTS: Error  #", then the number and the text.
    static QString failureText(MailSystem system, const MailFailure& failure);

private:
    // Runs the transport on a worker thread; the GUI thread keeps drawing meanwhile.
    std::optional<MailFailure> transfer(MailTransport& transport, const QByteArray& message,
                                        const QString& from, const QStringList& recipients,
                                        bool* cancelled);

    // The refusal of an address of the send, told or logged; false when there was none.
    bool refused(const QString& from, const QStringList& recipients);

    Prompter& m_prompter;
    QWidget* m_parent;
    QString m_recipientField;
    QString m_logPrefix;
};

} // namespace qmr
