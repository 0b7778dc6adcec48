#include "core/viewsettings.h"

#include <QtGlobal>

#include "core/settings.h"

namespace qmr {

void ViewSettings::read()
{
    m_zoomDefault = m_settings.get(keys::ZoomDefault);
    m_displayCount = m_settings.displayCount();
    // The stored side is read but has no effect: thumbnails are always 100 pixels.
    m_settings.get(keys::ThumbSide);
    m_thumbSide = 100;
    m_thumbView = m_settings.get(keys::ThumbView);
}

void ViewSettings::setZoomDefault(const QString& zoom)
{
    m_settings.set(keys::ZoomDefault, zoom);
    m_zoomDefault = m_settings.get(keys::ZoomDefault);
}

void ViewSettings::setDisplayCount(int count)
{
    m_displayCount = qBound(1, count, 64);
    m_settings.set(keys::DisplayCount, QString::number(m_displayCount));
}

void ViewSettings::setThumbView(const QString& view)
{
    m_thumbView = view;
    m_settings.set(keys::ThumbView, view);
}

} // namespace qmr
