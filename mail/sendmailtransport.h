#pragma once

#include <QCoreApplication>
#include <QString>

#include "mail/mailtransport.h"

namespace qmr {

// Hands the message to the system's mail program as `sendmail -t -i`: the recipients come
// from the message's own headers, and a line of one dot does not end it.
class SendmailTransport : public MailTransport
{
    Q_DECLARE_TR_FUNCTIONS(qmr::SendmailTransport)

public:
    explicit SendmailTransport(const QString& program) : m_program(program) {}

    std::optional<MailFailure> send(const QByteArray& message, const QString& from,
                                    const QStringList& recipients,
                                    const std::atomic_bool& cancel) override;

    static constexpr int kTimeLimitMs = 120000;

private:
    QString m_program;
};

} // namespace qmr
