#include "store/session.h"

namespace qmr {

Session::Session(AppHome home, Settings& settings)
    : m_home(std::move(home)), m_settings(settings), m_paths(m_db, m_home)
{
}

Session::~Session() = default;

void Session::readStartSettings()
{
    m_zoomDefault = m_settings.getSetting(QStringLiteral("ZoomDefault"), QStringLiteral("NONE"));
    m_displayCount = m_settings.displayCount();
    // The stored side is read but has no effect: thumbnails are always 100 pixels.
    m_settings.getSetting(QStringLiteral("ThumbSide"), QStringLiteral("100"));
    m_thumbSide = 100;
    m_thumbView = m_settings.getSetting(QStringLiteral("ThumbView"), QStringLiteral("thumbnail"));
}

} // namespace qmr
