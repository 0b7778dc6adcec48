#pragma once

#include "core/apphome.h"
#include "core/settings.h"

#include <QTemporaryDir>
#include <memory>

namespace qmr::test {

// A temporary application home with its own settings file, gone after the test.
class TestHome
{
public:
    TestHome();
    const AppHome& home() const { return m_home; }
    QString path() const { return m_dir.path(); }
    QString file(const QString& relative) const { return m_home.file(relative); }
    Settings& settings() { return *m_settings; }
    QString settingsPath() const { return m_settingsPath; }
    // Reopens the settings from the file, as a new run would see them.
    Settings& reopenSettings();

private:
    QTemporaryDir m_dir;
    QTemporaryDir m_config;
    AppHome m_home;
    QString m_settingsPath;
    std::unique_ptr<Settings> m_settings;
};

} // namespace qmr::test
