#include "tests/support/testhome.h"

namespace qmr::test {

TestHome::TestHome()
    : m_home(m_dir.path()), m_settingsPath(m_config.filePath(QStringLiteral("Quillmere.conf"))),
      m_settings(std::make_unique<Settings>(m_settingsPath))
{
}

Settings& TestHome::reopenSettings()
{
    m_settings->sync();
    m_settings = std::make_unique<Settings>(m_settingsPath);
    return *m_settings;
}

} // namespace qmr::test
