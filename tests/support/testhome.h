#pragma once

#include <QTemporaryDir>
#include <memory>

#include "core/apphome.h"
#include "core/settings.h"

namespace qmr::test {

// A temporary application home with its own settings file, gone after the test.
class TestHome
{
public:
    TestHome();
    const AppHome& home() const { return m_home; }
    QString path() const { return m_dir.path(); }
    QString file(const QString& relative) const { return m_home.file(relative); }
    // Writes a file below the home (a store that is no store, a file in a directory's way).
    bool writeFile(const QString& relative, const QByteArray& bytes) const;
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
