#pragma once

#include <QSettings>
#include <QString>
#include <memory>

#include "core/settingkeys.h"

namespace qmr {

// A window's rectangle and state as kept in the settings (state: 0 normal, 1 minimised,
// 2 maximised).
struct Placement
{
    int top = 0;
    int left = 0;
    int height = 0;
    int width = 0;
    int windowState = 0;
};

// The per-user settings: organisation "QMR", application "Quillmere", group "Settings".
// Values are text; absent and empty are different.
class Settings
{
public:
    // The user's own settings file.
    Settings();
    // A settings file at a given path (tests).
    explicit Settings(const QString& iniPath);
    ~Settings();

    QString getSetting(const QString& key, const QString& defaultValue = QString()) const;
    void saveSetting(const QString& key, const QString& value);
    // The named keys of settingkeys.h, with their own defaults.
    QString get(const SettingKey& key) const;
    void set(const SettingKey& key, const QString& value);
    // Takes the key out of the file: it reads as absent again.
    void remove(const SettingKey& key);
    // A number; the key's default when absent or not a number.
    double number(const SettingKey& key) const;
    // A yes-or-no key: true for "Y", false for any other word, the default when absent.
    bool flag(const FlagKey& key) const;
    void setFlag(const FlagKey& key, bool on);
    // A mode key: the mode whose word the file holds, the default for an absent or unknown one.
    template <typename Mode, std::size_t N> Mode mode(const ModeKey<Mode, N>& key) const
    {
        const QString word = getSetting(QLatin1String(key.name));
        for (const auto& [mode, written] : key.words)
            if (word == QLatin1String(written))
                return mode;
        return key.defaultValue;
    }
    template <typename Mode, std::size_t N> void setMode(const ModeKey<Mode, N>& key, Mode mode)
    {
        for (const auto& [each, written] : key.words)
            if (each == mode)
                saveSetting(QLatin1String(key.name), QLatin1String(written));
    }
    bool contains(const QString& key) const;
    void sync();
    QString fileName() const;

    // Writes .Top/.Left/.Height/.Width only for a normal window, .WindowState always.
    void savePlacement(const QString& formName, const Placement& placement);
    // Reads the stored placement over `current`; a stored minimised state comes back normal;
    // a value that is no number leaves that field as it was. `sizable` false skips the size.
    Placement restorePlacement(const QString& formName, const Placement& current,
                               bool sizable = true) const;

    // DisplayCount clamped to 1..64; the stored value is not rewritten.
    int displayCount() const;

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace qmr
