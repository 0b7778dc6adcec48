#pragma once

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>

#include "core/progress.h"
#include "core/viewsettings.h"
#include "print/printtarget.h"
#include "store/commandcontext.h"
#include "store/pagepaths.h"
#include "store/schema.h"
#include "store/session.h"
#include "tests/support/commandharness.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"

namespace qmr::test {

// Writes a JPEG of `size` whose header states dpiX by dpiY dots per inch; 0 and 0 writes a
// header that states none.
inline bool writePicture(const QString& path, const QSize& size, int dpiX, int dpiY)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    p.setPen(QPen(Qt::darkBlue, 6));
    p.drawRect(image.rect().adjusted(3, 3, -4, -4));
    p.drawLine(image.rect().topLeft(), image.rect().bottomRight());
    p.end();
    const bool none = dpiX == 0 && dpiY == 0;
    image.setDotsPerMeterX(qRound((none ? 72 : dpiX) / 0.0254));
    image.setDotsPerMeterY(qRound((none ? 72 : dpiY) / 0.0254));
    if (!PagePaths::ensurePathExists(path) || !image.save(path, "JPG", 85))
        return false;
    if (!none)
        return true;
    // Units 0: the header gives an aspect ratio only.
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        return false;
    QByteArray bytes = file.readAll();
    const qsizetype at = bytes.indexOf(QByteArray("JFIF", 5));
    if (at < 0)
        return false;
    bytes[at + 7] = 0;
    bytes[at + 8] = 0;
    bytes[at + 9] = 1;
    bytes[at + 10] = 0;
    bytes[at + 11] = 1;
    file.seek(0);
    return file.write(bytes) == bytes.size();
}

// A sheet as a print target saw it.
struct Sheet
{
    QSize imageSize;
    QSize drawnSize;
    QPageLayout::Orientation orientation = QPageLayout::Portrait;
};

// A print target that keeps what was drawn, at a stated printer resolution.
class RecordingTarget : public PrintTarget
{
public:
    explicit RecordingTarget(int dpi = 600) : m_dpi(dpi) {}
    int dpiX() const override { return m_dpi; }
    int dpiY() const override { return m_dpi; }
    bool beginSheet(QPageLayout::Orientation orientation) override
    {
        if (refuseSheet == int(sheets.size()) + 1)
            return false;
        sheets.push_back({QSize(), QSize(), orientation});
        return true;
    }
    void drawImage(const QImage& image, const QSize& size) override
    {
        sheets.back().imageSize = image.size();
        sheets.back().drawnSize = size;
        if (onDraw)
            onDraw();
    }
    bool finish() override
    {
        ++finished;
        return true;
    }
    QString errorText() const override { return QStringLiteral("The printer refused a sheet."); }

    QVector<Sheet> sheets;
    int finished = 0;
    int refuseSheet = -1; // a 1-based sheet that cannot begin
    std::function<void()> onDraw;

private:
    int m_dpi;
};

// A progress whose person presses Cancel after `cancelAfter` steps.
class CancellingProgress : public Progress
{
public:
    explicit CancellingProgress(int cancelAfter) : m_cancelAfter(cancelAfter) {}
    void start(const QString& t, int minimum, int maximum) override
    {
        title = t;
        min = minimum;
        max = maximum;
        m_stopped = false;
    }
    void step(const QString& status) override
    {
        steps << status;
        if (int(steps.size()) >= m_cancelAfter)
            m_stopped = true;
    }
    void end() override
    {
        m_stopped = true;
        ++ends;
    }
    void showCancel() override { cancelShown = true; }
    bool stopped() const override { return m_stopped; }

    QString title;
    int min = 0, max = 0, ends = 0;
    bool cancelShown = false;
    QStringList steps;

private:
    int m_cancelAfter;
    bool m_stopped = true;
};

// A store with one document ("Tax return") of pages whose pictures are real files, and the
// seams of a command.
struct PrintHarness : CommandHarness<>
{
    std::unique_ptr<FixtureStore> store;
    qint32 document = -1;

    PrintHarness()
    {
        store = std::make_unique<FixtureStore>(home.home());
        const qint32 cabinet = store->cabinet("Home");
        const qint32 folder = store->folder(store->drawer(cabinet, "Taxes"), "2025");
        document = store->document(folder, "Tax return");
        openSession();
    }
    // A page of the document whose picture lies at its computed path.
    qint32 page(int number, const QSize& size, int dpiX, int dpiY, qint32 documentId = -1)
    {
        const qint32 id = store->pageRow(documentId < 0 ? document : documentId, number);
        if (!writePicture(session->paths().computedPagePath(id), size, dpiX, dpiY))
            qWarning("cannot write the picture of page %d", id);
        return id;
    }
};

// What the PDF tools of poppler-utils say of a file.
struct PdfFacts
{
    int pages = -1;
    QSizeF pageSize;                   // points, of the first page
    QVector<QSizeF> pageSizes;         // points, per page, turned as the page is shown
    QVector<QPair<int, int>> imagePpi; // x and y, per image, in page order
    QVector<QSize> imageSizes;         // pixels, per image, in page order
    QString error;
};

inline PdfFacts readPdf(const QString& path)
{
    PdfFacts facts;
    QProcess info;
    info.start(QStringLiteral("pdfinfo"), {QStringLiteral("-f"), QStringLiteral("1"),
                                           QStringLiteral("-l"), QStringLiteral("100000"), path});
    if (!info.waitForFinished(30000) || info.exitCode() != 0) {
        facts.error = QStringLiteral("pdfinfo (poppler-utils) failed or is missing: ") +
                      QString::fromLocal8Bit(info.readAllStandardError()) + info.errorString();
        return facts;
    }
    const QString text = QString::fromLocal8Bit(info.readAllStandardOutput());
    const QRegularExpressionMatch pages =
        QRegularExpression(QStringLiteral("^Pages:\\s+(\\d+)"), QRegularExpression::MultilineOption)
            .match(text);
    facts.pages = pages.hasMatch() ? pages.captured(1).toInt() : -1;
    QRegularExpressionMatchIterator sizes =
        QRegularExpression(QStringLiteral("^Page +\\d+ size:\\s+([\\d.]+) x ([\\d.]+) pts"),
                           QRegularExpression::MultilineOption)
            .globalMatch(text);
    QRegularExpressionMatchIterator turns =
        QRegularExpression(QStringLiteral("^Page +\\d+ rot:\\s+(\\d+)"),
                           QRegularExpression::MultilineOption)
            .globalMatch(text);
    while (sizes.hasNext()) {
        const QRegularExpressionMatch size = sizes.next();
        QSizeF points(size.captured(1).toDouble(), size.captured(2).toDouble());
        if (turns.hasNext() && turns.next().captured(1).toInt() % 180 == 90)
            points.transpose();
        facts.pageSizes.push_back(points);
    }
    if (!facts.pageSizes.isEmpty())
        facts.pageSize = facts.pageSizes.first();

    QProcess images;
    images.start(QStringLiteral("pdfimages"), {QStringLiteral("-list"), path});
    if (!images.waitForFinished(30000) || images.exitCode() != 0) {
        facts.error = QStringLiteral("pdfimages (poppler-utils) failed or is missing");
        return facts;
    }
    const QStringList lines =
        QString::fromLocal8Bit(images.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    // Two header lines, then: page num type width height color comp bpc enc interp object ID
    // x-ppi y-ppi size ratio.
    for (qsizetype i = 2; i < lines.size(); ++i) {
        const QStringList f = lines.at(i).simplified().split(' ');
        if (f.size() >= 14 && f.at(2) == QLatin1String("image")) {
            facts.imagePpi.push_back({f.at(12).toInt(), f.at(13).toInt()});
            facts.imageSizes.push_back(QSize(f.at(3).toInt(), f.at(4).toInt()));
        }
    }
    return facts;
}

} // namespace qmr::test
