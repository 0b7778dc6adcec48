#pragma once

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <functional>

#include "print/printtarget.h"
#include "store/pagepaths.h"
#include "tests/support/commandharness.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/recordingprogress.h"

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
    // The JFIF density of units 0 states an aspect ratio only: 1 by 1.
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        return false;
    QByteArray bytes = file.readAll();
    const qsizetype at = bytes.indexOf(QByteArray("JFIF", 5));
    return at >= 0 && file.seek(0) &&
           file.write(bytes.replace(at + 7, 5, QByteArray("\0\0\1\0\1", 5))) == bytes.size();
}

// A print target at 600 dots per inch that counts the sheets it is given.
class RecordingTarget : public PrintTarget
{
public:
    int dpiX() const override { return 600; }
    int dpiY() const override { return 600; }
    bool beginSheet(QPageLayout::Orientation) override
    {
        if (refuseSheet == sheets + 1)
            return false;
        ++sheets;
        return true;
    }
    void drawImage(const QImage&, const QSize&) override
    {
        if (onDraw)
            onDraw();
    }
    bool finish() override
    {
        ++finished;
        return true;
    }
    QString errorText() const override { return QStringLiteral("The printer refused a sheet."); }

    int sheets = 0;
    int finished = 0;
    int refuseSheet = -1; // a 1-based sheet that cannot begin
    std::function<void()> onDraw;
};

// A progress that notes what it is told, whose person presses Cancel after `cancelAfter`
// steps.
class CancellingProgress : public RecordingProgress
{
public:
    explicit CancellingProgress(int cancelAfter) : m_cancelAfter(cancelAfter) {}
    void showCancel() override { cancelShown = true; }
    // The log holds the start line and then a line a step.
    bool stopped() const override
    {
        return RecordingProgress::stopped() || log.size() > m_cancelAfter;
    }

    bool cancelShown = false;

private:
    int m_cancelAfter;
};

// A store with one document ("Tax return") of pages whose pictures are real files, and the
// seams of a command.
struct PrintHarness : CommandHarness<>
{
    FixtureStore store{home.home()};
    qint32 document = -1;

    PrintHarness()
    {
        const qint32 folder = store.folder(store.drawer(store.cabinet("Home"), "Taxes"), "2025");
        document = store.document(folder, "Tax return");
        openSession();
    }
    // A page of the document whose picture lies at its computed path.
    qint32 page(int number, const QSize& size, int dpiX, int dpiY)
    {
        const qint32 id = store.pageRow(document, number);
        if (!writePicture(session->paths().computedPagePath(id), size, dpiX, dpiY))
            qWarning("cannot write the picture of page %d", id);
        return id;
    }
    // Pages 1, 2... of the document, of these sizes, at 100 dots per inch.
    void pages(const QVector<QSize>& sizes)
    {
        for (int n = 1; n <= sizes.size(); ++n)
            page(n, sizes[n - 1], 100, 100);
    }
};

// What the PDF tools of poppler-utils say of a file.
struct PdfFacts
{
    int pages = -1;
    QVector<QSizeF> pageSizes;         // points, per page, turned as the page is shown
    QVector<QPair<int, int>> imagePpi; // x and y, per image, in page order
    QVector<QSize> imageSizes;         // pixels, per image, in page order
    QString error;

    // Per page, whether it is shown wider than tall.
    QList<bool> across() const
    {
        QList<bool> wide;
        for (const QSizeF& sheet : pageSizes)
            wide << (sheet.width() > sheet.height());
        return wide;
    }
};

inline PdfFacts readPdf(const QString& path)
{
    PdfFacts facts;
    const auto run = [&](const QString& program, const QStringList& args) {
        QProcess p;
        p.start(program, args);
        if (!p.waitForFinished(30000) || p.exitCode() != 0)
            facts.error = program + " (poppler-utils) failed or is missing: " +
                          QString::fromLocal8Bit(p.readAllStandardError()) + p.errorString();
        return QString::fromLocal8Bit(p.readAllStandardOutput());
    };
    const QString text = run("pdfinfo", {"-f", "1", "-l", "100000", path});
    const auto lines = [&](const char* pattern) {
        return QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text);
    };
    for (auto pages = lines("^Pages:\\s+(\\d+)"); pages.hasNext();)
        facts.pages = pages.next().captured(1).toInt();
    auto turns = lines("^Page +\\d+ rot:\\s+(\\d+)");
    for (auto sizes = lines("^Page +\\d+ size:\\s+([\\d.]+) x ([\\d.]+) pts"); sizes.hasNext();) {
        const QRegularExpressionMatch size = sizes.next();
        QSizeF points(size.captured(1).toDouble(), size.captured(2).toDouble());
        if (turns.hasNext() && turns.next().captured(1).toInt() % 180 == 90)
            points.transpose();
        facts.pageSizes.push_back(points);
    }
    // Two header lines, then: page num type width height color comp bpc enc interp object ID
    // x-ppi y-ppi size ratio.
    const QStringList images = run("pdfimages", {"-list", path}).split('\n', Qt::SkipEmptyParts);
    for (qsizetype i = 2; i < images.size(); ++i) {
        const QStringList f = images.at(i).simplified().split(' ');
        if (f.size() >= 14 && f.at(2) == QLatin1String("image")) {
            facts.imagePpi.push_back({f.at(12).toInt(), f.at(13).toInt()});
            facts.imageSizes.push_back(QSize(f.at(3).toInt(), f.at(4).toInt()));
        }
    }
    return facts;
}

// The images' resolutions in `pdf` against those expected, each within 1: "" when they are
// those, else what was seen.
inline QString ppiMismatch(const PdfFacts& pdf, const QVector<QPair<int, int>>& expected)
{
    QString seen = pdf.error + " images at";
    for (const auto& [x, y] : pdf.imagePpi)
        seen += QString(" %1x%2").arg(x).arg(y);
    bool same = pdf.error.isEmpty() && pdf.imagePpi.size() == expected.size();
    for (qsizetype i = 0; same && i < expected.size(); ++i)
        same = qAbs(pdf.imagePpi[i].first - expected[i].first) <= 1 &&
               qAbs(pdf.imagePpi[i].second - expected[i].second) <= 1;
    return same ? QString() : seen;
}

} // namespace qmr::test
