#include "core/settings.h"

namespace qmr {

namespace {
const QString kGroup = QStringLiteral("Settings/");
}

Settings::Settings()
    : m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                             QStringLiteral("QMR"), QStringLiteral("Quillmere")))
{
}

Settings::Settings(const QString& iniPath)
    : m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat))
{
}

Settings::~Settings() = default;

QString Settings::getSetting(const QString& key, const QString& defaultValue) const
{
    const QVariant value = m_settings->value(kGroup + key);
    if (!value.isValid())
        return defaultValue;
    return value.toString();
}

void Settings::saveSetting(const QString& key, const QString& value)
{
    m_settings->setValue(kGroup + key, value);
}

QString Settings::get(const SettingKey& key) const
{
    return getSetting(QLatin1String(key.name), QString::fromUtf8(key.defaultValue));
}

void Settings::set(const SettingKey& key, const QString& value)
{
    saveSetting(QLatin1String(key.name), value);
}

void Settings::remove(const SettingKey& key)
{
    m_settings->remove(kGroup + QLatin1String(key.name));
}

double Settings::number(const SettingKey& key) const
{
    bool ok = false;
    const double value = get(key).toDouble(&ok);
    return ok ? value : QString::fromUtf8(key.defaultValue).toDouble();
}

bool Settings::flag(const FlagKey& key) const
{
    const QString name = QLatin1String(key.name);
    if (!contains(name))
        return key.defaultValue;
    return getSetting(name) == QLatin1String("Y");
}

void Settings::setFlag(const FlagKey& key, bool on)
{
    saveSetting(QLatin1String(key.name), on ? QStringLiteral("Y") : QStringLiteral("N"));
}

bool Settings::contains(const QString& key) const
{
    return m_settings->contains(kGroup + key);
}

void Settings::sync()
{
    m_settings->sync();
}

QString Settings::fileName() const
{
    return m_settings->fileName();
}

void Settings::savePlacement(const QString& formName, const Placement& placement)
{
    if (placement.windowState != 1 && placement.windowState != 2) {
        saveSetting(formName + QLatin1String(".Top"), QString::number(placement.top));
        saveSetting(formName + QLatin1String(".Left"), QString::number(placement.left));
        saveSetting(formName + QLatin1String(".Height"), QString::number(placement.height));
        saveSetting(formName + QLatin1String(".Width"), QString::number(placement.width));
    }
    saveSetting(formName + QLatin1String(".WindowState"), QString::number(placement.windowState));
}

Placement Settings::restorePlacement(const QString& formName, const Placement& current,
                                     bool sizable) const
{
    Placement result = current;
    // Each key on its own: a bad value leaves that one field alone.
    auto read = [&](const char* suffix, int& field) {
        bool ok = false;
        const double value =
            getSetting(formName + QLatin1String(suffix), QString::number(field)).toDouble(&ok);
        if (ok && value > -1e9 && value < 1e9)
            field = static_cast<int>(value);
    };
    read(".WindowState", result.windowState);
    if (result.windowState == 1 || result.windowState < 0 || result.windowState > 2)
        result.windowState = 0;
    read(".Top", result.top);
    read(".Left", result.left);
    if (sizable) {
        read(".Height", result.height);
        read(".Width", result.width);
    }
    return result;
}

int Settings::displayCount() const
{
    const double value = number(keys::DisplayCount);
    if (value < 1)
        return 1;
    if (value > 64)
        return 64;
    return static_cast<int>(value);
}

} // namespace qmr
