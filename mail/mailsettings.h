#pragma once

#include <QString>

namespace qmr {

class Settings;

// The mail route of the settings: "MAPI" hands messages to the system's sendmail program,
// "CDONTS" sends them to an SMTP server.
enum class MailSystem { None, Mapi, Cdonts };

// What a send needs to know of the settings, read once, or taken from the email settings
// dialog for its test.
struct MailSettings
{
    MailSystem system = MailSystem::None;
    QString fromAddress;
    QString smtpServer = QStringLiteral("localhost");
    int smtpPort = 25;
    QString smtpSecurity = QStringLiteral("none"); // "none", "starttls", "tls"
    QString smtpUser;
    QString smtpPassword; // kept in the keyring where one runs (SmtpPassword)
    QString sendmailPath = QStringLiteral("/usr/sbin/sendmail");

    // Every field but the password, which is asked for only where it is needed.
    static MailSettings read(const Settings& settings);
    // The settings of a send: with the password when an SMTP server is logged in to (CDONTS
    // with a user name); the keyring is asked only then.
    static MailSettings forSending(Settings& settings);
    // Writes every field, the password where SmtpPassword keeps it, and keeps the settings file
    // to its owner: it may hold the password.
    void write(Settings& settings) const;

    // "MAPI", "CDONTS"; anything else is none.
    static MailSystem systemOf(const QString& setting);
    static QString nameOf(MailSystem system);
};

} // namespace qmr
