#pragma once

#include <QIcon>
#include <QString>

class QWidget;

namespace qmr {

// The pictures beside the captions of the main window's and the viewer's buttons, so that a
// row of them reads like a toolbar. Each button's objectName names an icon of the desktop's
// theme, with one of the program's own SVGs where the theme has none (or there is no theme).
class ButtonIcons
{
public:
    // The icon for a button of that objectName; a null icon for a name the table lacks.
    static QIcon icon(const QString& objectName);
    // Gives every push button under `root` that has a caption in words and an entry its icon.
    static void apply(QWidget* root);
};

} // namespace qmr
