#pragma once

#include "mail/mailsettings.h"
#include "mail/mailtransport.h"

namespace qmr {

// Sends to the SMTP server of the settings through libcurl: plain, STARTTLS required, or TLS
// from the start, with a user name and password when one is set.
class SmtpTransport : public MailTransport
{
public:
    explicit SmtpTransport(const MailSettings& settings);

    std::optional<MailFailure> send(const QByteArray& message, const QString& from,
                                    const QStringList& recipients,
                                    const std::atomic_bool& cancel) override;

    // The time limits, in seconds: to connect, and of a transfer that makes no progress.
    static constexpr long kConnectSeconds = 20;
    static constexpr long kStallSeconds = 60;
    static constexpr long kTotalSeconds = 600;

    // "smtp://host:port" or "smtps://host:port".
    QString url() const;

private:
    MailSettings m_settings;
};

} // namespace qmr
