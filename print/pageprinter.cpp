#include "print/pageprinter.h"

#include <QCoreApplication>
#include <QImage>
#include <QImageReader>

#include "core/imageloader.h"
#include "core/imageresolution.h"
#include "core/progress.h"
#include "print/printtarget.h"
#include "store/pagepaths.h"

namespace qmr {

PagePrinter::PagePrinter(const PagePaths& paths, const PrintScaleSettings& scale)
    : m_paths(paths), m_scale(scale)
{
}

PrintOutcome PagePrinter::print(const QVector<PageRow>& pages, PrintTarget& target,
                                Progress* progress, const QString& title) const
{
    PrintOutcome outcome;
    if (progress) {
        progress->start(title, 1, int(pages.size()));
        progress->showCancel();
    }
    for (const PageRow& page : pages) {
        if (progress) {
            if (progress->stopped()) {
                outcome.cancelled = true;
                break;
            }
            progress->step(tr("Page %1").arg(page.pageNumber));
        }
        const QString path = m_paths.pagePath(page.id, page.filename);
        QImageReader reader(path);
        const LoadedImage loaded = ImageLoader::read(reader);
        const QImage& image = loaded.image;
        if (image.isNull()) {
            outcome.error = tr("Cannot print %1: %2").arg(path, loaded.error);
            break;
        }
        const FileResolution dpi = ImageResolution::read(path, image);
        const QSize size = PrintScale::printSize(image.size(), dpi.x, dpi.y, target.dpiX(),
                                                 target.dpiY(), m_scale);
        // A page wider than it is tall goes across the sheet, so that it is not cut off.
        const QPageLayout::Orientation orientation =
            size.width() > size.height() ? QPageLayout::Landscape : QPageLayout::Portrait;
        if (!target.beginSheet(orientation)) {
            outcome.error = target.errorText();
            break;
        }
        target.drawImage(image, size);
        ++outcome.printed;
        // Drawing a large page takes a while: let the windows answer and Cancel be seen.
        if (progress)
            QCoreApplication::processEvents();
    }
    if (progress && !outcome.cancelled && progress->stopped())
        outcome.cancelled = outcome.printed < pages.size();
    if (!target.finish() && outcome.error.isEmpty())
        outcome.error = target.errorText();
    if (progress)
        progress->end();
    return outcome;
}

} // namespace qmr
