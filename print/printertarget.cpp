#include "print/printertarget.h"

#include <QPrinter>

#include "print/pdfoutput.h"

namespace qmr {

PrinterTarget::PrinterTarget(QPrinter& printer, Sheets sheets)
    : m_printer(printer), m_sheets(sheets)
{
}

PrinterTarget::~PrinterTarget()
{
    if (m_painter.isActive())
        m_painter.end();
    // A job that was not finished leaves nothing behind, and the chosen file as it was.
    if (m_pdf)
        m_printer.setOutputFileName(m_pdf->target());
}

int PrinterTarget::dpiX() const
{
    return m_printer.logicalDpiX();
}

int PrinterTarget::dpiY() const
{
    return m_printer.logicalDpiY();
}

QString PrinterTarget::where() const
{
    if (m_printer.outputFormat() == QPrinter::PdfFormat)
        return tr("the file ") + (m_pdf ? m_pdf->target() : m_printer.outputFileName());
    return tr("the printer ") + m_printer.printerName();
}

bool PrinterTarget::beginSheet(QPageLayout::Orientation orientation)
{
    // The sheet turns before it begins; the paper size and margins stay as set up.
    if (m_sheets == Sheets::Turned)
        m_printer.setPageOrientation(orientation);
    else
        m_across = orientation != m_printer.pageLayout().orientation();
    if (!m_started) {
        m_started = true;
        // A preview has no file: its sheets are only drawn on the screen.
        if (m_printer.outputFormat() == QPrinter::PdfFormat &&
            !m_printer.outputFileName().isEmpty()) {
            m_pdf = std::make_unique<PdfOutput>(m_printer.outputFileName());
            if (!m_pdf->open()) {
                m_error = tr("Cannot print to %1.").arg(where());
                return false;
            }
            m_printer.setOutputFileName(m_pdf->writtenPath());
        }
        if (!m_painter.begin(&m_printer)) {
            m_error = tr("Cannot print to %1.").arg(where());
            return false;
        }
        return true;
    }
    if (!m_painter.isActive() || !m_printer.newPage()) {
        m_error = tr("Cannot start a new sheet on %1.").arg(where());
        return false;
    }
    return true;
}

void PrinterTarget::drawImage(const QImage& image, const QSize& size)
{
    m_painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_across) {
        m_painter.drawImage(QRect(QPoint(0, 0), size), image);
        return;
    }
    // A quarter turn clockwise: the page's top runs down the sheet's right edge, and what
    // would have stood across the turned sheet's printable area stands on this one's.
    const int width = m_printer.pageLayout().paintRectPixels(m_printer.resolution()).width();
    m_painter.save();
    m_painter.translate(width, 0);
    m_painter.rotate(90);
    m_painter.drawImage(QRect(QPoint(0, 0), size), image);
    m_painter.restore();
}

bool PrinterTarget::finish()
{
    if (!m_painter.isActive())
        return m_error.isEmpty();
    if (!m_painter.end() || m_printer.printerState() == QPrinter::Error) {
        m_error = tr("Printing to %1 failed.").arg(where());
        return false;
    }
    if (m_pdf && !m_pdf->place()) {
        m_error = tr("Printing to %1 failed: %2").arg(where(), m_pdf->errorString());
        return false;
    }
    return true;
}

} // namespace qmr
