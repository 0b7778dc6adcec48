#include "resources/buttonicons.h"

#include <algorithm>

#include <QFontMetrics>
#include <QPushButton>
#include <QStyle>
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
    {"cmdPrev", "go-previous", "previous"},
    {"cmdNext", "go-next", "next"},
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
    {"cmdSearchablePdf", "application-pdf", "pdf"},
    {"cmdPrevMatch", "go-up", "matchprevious"},
    {"cmdNextMatch", "go-down", "matchnext"},
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
        // A caption of signs alone ("|<", ">") is its own picture; an icon beside it says it twice.
        const QString caption = button->text();
        if (std::none_of(caption.begin(), caption.end(), [](QChar c) { return c.isLetter(); }))
            continue;
        const QIcon found = icon(button->objectName());
        if (found.isNull())
            continue;
        button->setIcon(found);
        // The style keeps a captioned button at least about 80 px wide; a row of them then
        // grows wider than a small screen. The button may shrink to its icon and caption.
        if (button->minimumWidth() == 0) {
            QStyle* style = button->style();
            const int frame =
                2 * (style->pixelMetric(QStyle::PM_ButtonMargin, nullptr, button) +
                     style->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, button));
            const int caption =
                button->fontMetrics().size(Qt::TextShowMnemonic, button->text()).width();
            button->setMinimumWidth(
                qMin(button->sizeHint().width(), caption + button->iconSize().width() + 4 + frame));
        }
    }
}

} // namespace qmr
