#pragma once

#include <QCoreApplication>
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
    Q_DECLARE_TR_FUNCTIONS(qmr::PrinterTarget)

public:
    // How a page whose orientation is not the sheet's is put on paper: the sheet turned
    // (printing), or the page turned a quarter on a sheet that keeps the printer's
    // orientation (Qt's preview shows every sheet at one size).
    enum class Sheets { Turned, Fixed };

    explicit PrinterTarget(QPrinter& printer, Sheets sheets = Sheets::Turned);
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
    Sheets m_sheets;
    bool m_across = false; // this page lies turned on a fixed sheet
    bool m_started = false;
    QString m_error;
};

} // namespace qmr
