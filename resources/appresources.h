#pragma once

#include <QString>
#include <QStringList>

namespace qmr {

// The pictures compiled into the program, one SVG file per name ("cabinet", "drawer",
// "folder", "document", "page", "locked", "found", "root", "clock"...). A QIcon made from
// the path draws them sharp at whatever size a widget asks for.
class AppResources
{
public:
    // ":/icons/NAME.svg"; the path of a name that is not compiled in does not exist.
    static QString iconPath(const QString& name);
    // Every compiled-in icon name, sorted.
    static QStringList iconNames();
};

} // namespace qmr
