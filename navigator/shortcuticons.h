#pragma once

#include <QHash>
#include <QIcon>
#include <QImage>
#include <QString>

namespace qmr {

// The tiles of shortcut pages: the desktop's icon for the file's type, 32 pixels in the
// middle of a 100 by 100 tile. One tile per type, made once. A PDF shows it until its first
// page is drawn, and keeps it when the page cannot be.
class ShortcutIcons
{
public:
    // `fallback` stands in when neither the icon theme nor the style has a picture.
    explicit ShortcutIcons(QIcon fallback) : m_fallback(std::move(fallback)) {}

    QImage tile(const QString& path);
    // The icon of the file's type, by its name: the theme's icon for the type, for its
    // generic type, then the style's file icon.
    QIcon iconFor(const QString& path) const;
    // The file is a PDF by its name: its first page can stand in for the icon.
    static bool isPdf(const QString& path);

private:
    QIcon m_fallback;
    QHash<QString, QImage> m_tiles;
};

} // namespace qmr
