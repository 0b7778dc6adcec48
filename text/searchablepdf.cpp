#include "text/searchablepdf.h"

#include <QFontMetricsF>
#include <QImageReader>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

#include "core/imageloader.h"
#include "core/imageresolution.h"
#include "core/progress.h"

namespace qmr {

namespace {

// The size words are shaped at before each is stretched to its box; large enough that the
// shapes' rounding does not show in where a word ends.
constexpr int kWordPixels = 200;

struct Dpi
{
    double x = SearchablePdf::kDefaultDpi;
    double y = SearchablePdf::kDefaultDpi;
};

Dpi dpiOf(const QString& path, const QImage& image)
{
    const FileResolution stated = ImageResolution::read(path, image);
    Dpi dpi;
    if (stated.x > 0 && stated.y > 0)
        dpi = {double(stated.x), double(stated.y)};
    return dpi;
}

QFont wordFont()
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(kWordPixels);
    // Where a word ends must not depend on a screen's grid: the page is stretched anyway.
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::ForceOutline);
    return font;
}

// Each word stretched over its box, so that a reader's selection covers what is printed; the
// pen draws nothing, so the picture alone shows.
void layWords(QPainter& painter, const QList<TextIndex::Word>& words)
{
    const QFontMetricsF metrics(painter.font(), painter.device());
    for (const TextIndex::Word& word : words) {
        const double natural = metrics.horizontalAdvance(word.text);
        if (word.text.isEmpty() || !word.box.isValid() || natural <= 0)
            continue;
        painter.save();
        painter.translate(word.box.topLeft());
        painter.scale(word.box.width() / natural, word.box.height() / metrics.height());
        painter.drawText(QPointF(0, metrics.ascent()), word.text);
        painter.restore();
    }
}

} // namespace

Attempt<SearchablePdf::Outcome> SearchablePdf::write(const QList<Page>& pages, const QString& path,
                                                     const QString& title, Progress& progress)
{
    if (pages.isEmpty())
        return Failure(tr("There are no pictures to put into '%1'.").arg(path));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return Failure(tr("The PDF '%1' could not be written: %2.").arg(path, file.errorString()));
    QPdfWriter writer(&file);
    writer.setTitle(title);
    writer.setCreator(QCoreApplication::applicationName());
    QPainter painter;
    for (int i = 0; i < pages.size(); ++i) {
        const Page& page = pages.at(i);
        progress.step(tr("Page %1").arg(page.pageNumber));
        if (progress.stopped())
            return Outcome::Cancelled; // the save file, never committed, goes with its writer
        QImageReader reader(page.path);
        const LoadedImage loaded = ImageLoader::read(reader);
        if (loaded.image.isNull())
            return Failure(tr("The picture of page %1 ('%2') could not be read: %3.")
                               .arg(page.pageNumber)
                               .arg(page.path, loaded.error));
        const QImage& image = loaded.image;
        const Dpi dpi = dpiOf(page.path, image);
        const QSizeF points(image.width() * 72.0 / dpi.x, image.height() * 72.0 / dpi.y);
        // Each page is the size of its own paper, not of a standard sheet close to it.
        writer.setPageLayout(
            QPageLayout(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch),
                        QPageLayout::Portrait, QMarginsF()));
        if (i == 0 ? !painter.begin(&writer) : !writer.newPage())
            return Failure(
                tr("The PDF '%1' could not be written: %2.").arg(path, file.errorString()));
        // The picture's pixels are the page's units from here on.
        painter.resetTransform();
        painter.scale(writer.resolution() / dpi.x, writer.resolution() / dpi.y);
        painter.drawImage(QRectF(QPointF(0, 0), QSizeF(image.size())), image);
        painter.setFont(wordFont());
        painter.setPen(QColor(0, 0, 0, 0));
        layWords(painter, page.words);
    }
    if (painter.isActive() && !painter.end())
        return Failure(tr("The PDF '%1' could not be written: %2.").arg(path, file.errorString()));
    if (progress.stopped())
        return Outcome::Cancelled;
    if (!file.commit())
        return Failure(tr("The PDF '%1' could not be written: %2.").arg(path, file.errorString()));
    return Outcome::Written;
}

} // namespace qmr
