#pragma once

#include <QString>

namespace qmr {

class Settings;

// How pages are shown: the viewer's first zoom, the page pane's view, the thumbnails a screen
// and their side. Read at start; the commands that change one write it through here, so that
// open windows and the next start agree.
class ViewSettings
{
public:
    explicit ViewSettings(Settings& settings) : m_settings(settings) {}

    // Reads ZoomDefault, DisplayCount (1..64), ThumbView; ThumbSide is read and overruled.
    void read();

    QString zoomDefault() const { return m_zoomDefault; } // "FITWIDTH", "FITHEIGHT", "NONE"
    void setZoomDefault(const QString& zoom);
    int displayCount() const { return m_displayCount; }
    // Clamped to 1..64 and written at once.
    void setDisplayCount(int count);
    int thumbSide() const { return m_thumbSide; }
    QString thumbView() const { return m_thumbView; } // "thumbnail" or "list"
    void setThumbView(const QString& view);

private:
    Settings& m_settings;
    QString m_zoomDefault = QStringLiteral("NONE");
    int m_displayCount = 20;
    int m_thumbSide = 100;
    QString m_thumbView = QStringLiteral("thumbnail");
};

} // namespace qmr
