#include "resources/buttonicons.h"

#include <QPushButton>
#include <QWidget>

#include "resources/appresources.h"

namespace qmr {

namespace {

struct ButtonIcon
{
    const char* objectName;
    const char* themeName;
    const char* ownIcon;
};

// The same objectName means the same action in both windows (cmdPrev, cmdNext).
constexpr ButtonIcon kButtonIcons[] = {
    {"cmdScanDoc", "scanner", "scan"},
    {"cmdScanPic", "insert-image", "picture"},
    {"cmdFind", "edit-find", "find"},
    {"cmdShowLess", "list-remove", "showless"},
    {"cmdShowMore", "list-add", "showmore"},
    {"cmdFirst", "go-first", "first"},
    {"cmdPrev", "go-previous", "previous"},
    {"cmdNext", "go-next", "next"},
    {"cmdLast", "go-last", "last"},
    {"cmdPrint", "document-print", "print"},
    {"cmdEmail", "mail-send", "mail"},
    {"cmdSave", "document-save", "save"},
    {"cmdSaveAs", "document-save-as", "saveas"},
    {"cmdCancel", "window-close", "close"},
    {"cmdZoomIn", "zoom-in", "zoomin"},
    {"cmdZoomOut", "zoom-out", "zoomout"},
    {"cmdZoomFitWidth", "zoom-fit-width", "fitwidth"},
    {"cmdZoomFitHeight", "zoom-fit-height", "fitheight"},
    {"cmdRotateClockwise", "object-rotate-right", "rotateright"},
    {"cmdRotateCounterClockwise", "object-rotate-left", "rotateleft"},
    {"cmdCrop", "transform-crop", "crop"},
    {"cmdAutoTrim", "transform-crop-and-resize", "trim"},
    {"cmdInfo", "document-properties", "info"},
};

} // namespace

QIcon ButtonIcons::icon(const QString& objectName)
{
    for (const ButtonIcon& entry : kButtonIcons) {
        if (objectName == QLatin1String(entry.objectName))
            return QIcon::fromTheme(QLatin1String(entry.themeName),
                                    QIcon(AppResources::iconPath(QLatin1String(entry.ownIcon))));
    }
    return QIcon();
}

void ButtonIcons::apply(QWidget* root)
{
    for (QPushButton* button : root->findChildren<QPushButton*>()) {
        if (button->text().isEmpty())
            continue;
        const QIcon found = icon(button->objectName());
        if (!found.isNull())
            button->setIcon(found);
    }
}

} // namespace qmr
