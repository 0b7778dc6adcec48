#pragma once

#include <QPainter>
#include <memory>

#include "print/printtarget.h"

class QPrinter;

namespace qmr {

class PdfOutput;

// A printer or a PDF file, through Qt's printer. A PDF is written aside and takes the chosen
// file's place when the job ends (see PdfOutput).
class PrinterTarget : public PrintTarget
{
public:
    explicit PrinterTarget(QPrinter& printer);
    ~PrinterTarget() override;

    int dpiX() const override;
    int dpiY() const override;
    bool beginSheet(QPageLayout::Orientation orientation) override;
    void drawImage(const QImage& image, const QSize& size) override;
    bool finish() override;
    QString errorText() const override { return m_error; }

private:
    QString where() const;

    QPrinter& m_printer;
    std::unique_ptr<PdfOutput> m_pdf;
    QPainter m_painter;
    bool m_started = false;
    QString m_error;
};

} // namespace qmr
