#include <QFile>

#include "tests/support/testhome.h"

namespace qmr::test {

TestHome::TestHome()
    : m_home(m_dir.path()), m_settingsPath(m_config.filePath(QStringLiteral("Quillmere.conf"))),
      m_settings(std::make_unique<Settings>(m_settingsPath))
{
}

bool TestHome::writeFile(const QString& relative, const QByteArray& bytes) const
{
    QFile file(this->file(relative));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

Settings& TestHome::reopenSettings()
{
    m_settings->sync();
    m_settings = std::make_unique<Settings>(m_settingsPath);
    return *m_settings;
}

} // namespace qmr::test
