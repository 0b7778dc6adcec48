// Page images as the program reads them from outside: a page file's bytes through the
// thumbnail made from them and through the viewer's load, with the program's bound on a
// picture's memory in force, then the viewer's edits on what loaded, each taken back.

#include <QByteArray>
#include <QGuiApplication>
#include <QImage>

#include "core/imageloader.h"
#include "filing/imagefile.h"
#include "filing/thumbnailmaker.h"
#include "fuzzstore.h"
#include "viewer/imageedit.h"
#include "viewer/pageimage.h"

using namespace qmr;

namespace {

// The edits walk every pixel a few times: beyond this they only slow the search down.
constexpr qint64 kEditedPixels = 1 << 20;

void editAndTakeBack(const QImage& page)
{
    PageImage edited;
    edited.setImage(page);
    const QRect middle(page.width() / 4, page.height() / 3, page.width() / 2, page.height() / 3);
    edited.apply(ImageEdit::crop(middle));
    const QRect content = ImageEdit::autoTrimRect(edited.image());
    if (content.isValid() && !edited.image().rect().contains(content))
        fuzz::broken("the trim reaches beyond the image");
    if (content.isValid())
        edited.apply(ImageEdit::crop(content));
    edited.apply(ImageEdit::rotateClockwise());
    while (edited.undo()) {
    }
    const QImage& back = edited.image();
    if (back.size() != page.size() || back.format() != page.format())
        fuzz::broken("the edits taken back change the page's size or form");
    if (back.dotsPerMeterX() != page.dotsPerMeterX() ||
        back.dotsPerMeterY() != page.dotsPerMeterY())
        fuzz::broken("the edits taken back change the page's resolution");
    if (back != page)
        fuzz::broken("the edits taken back change the page's pixels");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // As in the program, the decoders (JPEG and TIFF are plug-ins, SVG draws text) run in a
    // GUI application; it needs no display.
    static int argc = 1;
    static char name[] = "fuzz_page_images";
    static char* argv[] = {name, nullptr};
    static const bool offscreen = [] {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        return true;
    }();
    static QGuiApplication app(argc, argv);
    Q_UNUSED(offscreen);

    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QImage reduced = ThumbnailMaker::reducedImageFromData(bytes);
    if (!reduced.isNull()) {
        if (reduced.width() > ThumbnailMaker::kThumbSide ||
            reduced.height() > ThumbnailMaker::kThumbSide)
            fuzz::broken("a thumbnail is larger than its tile");
        if (ThumbnailMaker::tile(reduced).size() !=
            QSize(ThumbnailMaker::kThumbSide, ThumbnailMaker::kThumbSide))
            fuzz::broken("a tile is not of the tile's size");
    }

    const Attempt<QImage> loaded = ImageFile::loadFromData(bytes, QStringLiteral("page.jpg"));
    if (!loaded)
        return 0;
    const QImage page = loaded.value();
    if (page.isNull())
        return 0;
    if (ImageLoader::bytesFor(page.size(), page.format()) > qint64(ImageLoader::kLimitMb) << 20)
        fuzz::broken("a loaded page is larger than the bound");
    if (page.format() != QImage::Format_RGB32 && page.format() != QImage::Format_Grayscale8)
        fuzz::broken("a loaded page is not in a form the edits work on");
    if (qint64(page.width()) * page.height() <= kEditedPixels)
        editAndTakeBack(page);
    return 0;
}
