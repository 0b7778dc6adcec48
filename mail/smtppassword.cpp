#include "mail/smtppassword.h"

#include "core/settings.h"

namespace qmr {

namespace {

const QString kEntry = QStringLiteral("SmtpPassword");

} // namespace

Keyring::Outcome SmtpPassword::keep(const QString& password) const
{
    return password.isEmpty() ? m_keyring.remove(kEntry) : m_keyring.write(kEntry, password);
}

SmtpPassword::Kept SmtpPassword::read()
{
    if (m_settings.contains(QLatin1String(keys::SmtpPassword.name))) {
        const QString password = m_settings.get(keys::SmtpPassword);
        if (keep(password) != Keyring::Outcome::Done)
            return {password, Place::SettingsFile};
        m_settings.remove(keys::SmtpPassword);
        m_settings.sync();
        return {password, Place::Keyring};
    }
    QString password;
    switch (m_keyring.read(kEntry, &password)) {
    case Keyring::Outcome::Done:
        return {password, Place::Keyring};
    case Keyring::Outcome::NotFound:
        return {QString(), Place::Keyring};
    case Keyring::Outcome::Unavailable:
        break;
    }
    return {QString(), Place::SettingsFile};
}

SmtpPassword::Place SmtpPassword::write(const QString& password)
{
    if (keep(password) == Keyring::Outcome::Done) {
        m_settings.remove(keys::SmtpPassword);
        return Place::Keyring;
    }
    m_settings.set(keys::SmtpPassword, password);
    return Place::SettingsFile;
}

} // namespace qmr
