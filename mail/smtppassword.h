#pragma once

#include <QString>

#include "mail/keyring.h"

namespace qmr {

class Settings;

// Where the SMTP password is kept: in the desktop's keyring where one answers, else in the
// settings file under SmtpPassword, as it always was (the file is then its owner's alone). A
// password found in the file while a keyring answers was written there while none did, so it
// is the newer one: it moves into the keyring and leaves the file.
class SmtpPassword
{
public:
    enum class Place { Keyring, SettingsFile };
    struct Kept
    {
        QString password;
        Place place = Place::SettingsFile;
    };

    explicit SmtpPassword(Settings& settings, const Keyring& keyring = Keyring())
        : m_settings(settings), m_keyring(keyring)
    {
    }

    Kept read();
    // Keeps `password` ("" for none) and says where it went. The settings file is not synced.
    Place write(const QString& password);

private:
    // Into the keyring; "" takes the entry out.
    Keyring::Outcome keep(const QString& password) const;

    Settings& m_settings;
    Keyring m_keyring;
};

} // namespace qmr
