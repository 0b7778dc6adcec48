#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "store/pagepaths.h"
#include "store/textindex.h"
#include "tests/support/commandharness.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testrunner.h"
#include "tests/text/printedpage.h"
#include "text/searchablepdfcommand.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// A picture of `size` at `dpi` (0: the file states none) with the lines printed on it in
// 12 points, and the boxes of its words where they were printed.
struct Picture
{
    QSize size;
    int dpi = 0;
    QStringList lines;

    QPoint origin() const { return QPoint(150, 150); }
    QImage image() const
    {
        return printedPage(lines, origin(), paper(size.height(), size.width(), dpi ? dpi : 300));
    }
    QList<TextIndex::Word> words() const
    {
        const QFontMetrics metrics(printFont());
        QList<TextIndex::Word> words;
        QPoint at = origin();
        for (const QString& line : lines) {
            int x = at.x();
            for (const QString& word : line.split(' ')) {
                const int width = metrics.horizontalAdvance(word);
                words << TextIndex::Word{word, QRect(x, at.y() - metrics.ascent(), width,
                                                     metrics.ascent() + metrics.descent())};
                x += metrics.horizontalAdvance(word + ' ');
            }
            at.ry() += 100;
        }
        return words;
    }
    // As a JPEG file; one without a resolution says so in its header (JFIF units 0).
    bool save(const QString& path) const
    {
        QByteArray bytes;
        {
            QBuffer buffer(&bytes);
            if (!buffer.open(QIODevice::WriteOnly) || !image().save(&buffer, "JPG", 90))
                return false;
        }
        if (!dpi) {
            if (bytes.mid(6, 5) != QByteArray("JFIF", 5))
                return false;
            bytes[13] = 0;
        }
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }
};

// The document's pictures by page number; a shortcut stands at number 2.
const QList<Picture>& pictures()
{
    static const QList<Picture> list = {
        {QSize(2550, 3300), 300, {"Northwind heating invoice", "Account number 4471"}},
        {QSize(2550, 3300), 150, {"Water meter reading"}},
        {QSize(1275, 1650), 0, {"Garden tools receipt"}},
    };
    return list;
}

// Stops at the first page, as a user's Cancel would.
struct CancellingProgress : SilentProgress
{
    void step(const QString&) override { cancelled = true; }
    void showCancel() override { cancelShown = true; }
    bool stopped() const override { return cancelled || SilentProgress::stopped(); }
    bool cancelled = false;
    bool cancelShown = false;
};

// What a PDF tool prints; nothing when it failed.
std::optional<QString> run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return std::nullopt;
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString pageText(const QString& pdf, int page)
{
    const QString n = QString::number(page);
    return run("pdftotext", {"-f", n, "-l", n, pdf, "-"}).value_or("<failed>").simplified();
}

QList<QSizeF> pageSizes(const QString& pdf)
{
    QList<QSizeF> sizes;
    const QString info = run("pdfinfo", {"-f", "1", "-l", "99", pdf}).value_or(QString());
    static const QRegularExpression line(R"(Page\s+\d+ size:\s+([\d.]+) x ([\d.]+) pts)");
    for (auto m = line.globalMatch(info); m.hasNext();) {
        const auto match = m.next();
        sizes << QSizeF(match.captured(1).toDouble(), match.captured(2).toDouble());
    }
    return sizes;
}

// The dark pixels of the rendered page and of the picture, and those dark on the page where the
// picture is white all around: what would be drawn over the picture.
struct Darkness
{
    int shown = 0, picture = 0, over = 0;
};
Darkness compare(const QImage& rendered, const QImage& picture)
{
    const QImage shown = rendered.convertToFormat(QImage::Format_Grayscale8);
    const QImage paper = picture.convertToFormat(QImage::Format_Grayscale8);
    Darkness d;
    for (int y = 1; y + 1 < qMin(shown.height(), paper.height()); ++y)
        for (int x = 1; x + 1 < qMin(shown.width(), paper.width()); ++x) {
            d.picture += qGray(paper.pixel(x, y)) < 128;
            if (qGray(shown.pixel(x, y)) >= 128)
                continue;
            ++d.shown;
            int darkest = 255;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx)
                    darkest = qMin(darkest, qGray(paper.pixel(x + dx, y + dy)));
            d.over += darkest > 200;
        }
    return d;
}

// A home with the document "March statement": the pictures above at page numbers 1, 3 and 4,
// a shortcut at number 2, and the document "Links" of a shortcut alone.
struct PdfHome : CommandHarness<>
{
    qint32 document = -1;
    qint32 links = -1;
    QList<qint32> pageIds; // of the pictures

    bool fill()
    {
        {
            FixtureStore store(home.home());
            const qint32 folder = store.folder(store.drawer(store.cabinet("Home"), "Bills"), "Gas");
            document = store.document(folder, "March statement");
            links = store.document(folder, "Links");
            const PagePaths paths(home.home());
            const int numbers[] = {1, 3, 4};
            for (int i = 0; i < pictures().size(); ++i) {
                pageIds << store.page(document, numbers[i]);
                if (!pictures().at(i).save(paths.pagePath(pageIds.last(), "")))
                    return false;
            }
            for (const auto& [doc, number] : {std::pair{document, 2}, {links, 1}})
                store.db().execute(
                    "UPDATE Page SET ShortcutYN = 'Y', Filename = ? WHERE PageId = ?",
                    {home.file("reply.txt"), store.pageRow(doc, number)});
        }
        openSession();
        return true;
    }
    QString pagePath(int picture) const
    {
        return PagePaths(home.home()).pagePath(pageIds.at(picture), "");
    }
    // Puts the words of the pictures whose text is "read", as the reader would; "stale" puts
    // them for the file as it was before it changed.
    void index(const QStringList& states)
    {
        TextIndex text(home.path());
        text.open();
        for (int i = 0; i < states.size(); ++i) {
            TextIndex::Stamp stamp = TextIndex::Stamp::of(pagePath(i));
            if (states.at(i) == "stale")
                stamp.modified -= 60000;
            if (states.at(i) != "none")
                text.put(pageIds.at(i), stamp, pictures().at(i).words());
        }
    }
};

} // namespace

// A document saved as a PDF shows its pictures at their paper's size, with the words read on
// them findable and invisible.
class TestSearchablePdf : public QObject
{
    Q_OBJECT
private slots:
    void picturesWithTheirWords_data()
    {
        // Per picture: "read", "none" (not read yet) or "stale" (read from an older file).
        columns<QStringList, QString>({"states", "message"});
        row("all read", QStringList{"read", "read", "read"}, QString());
        row("one not read", QStringList{"read", "none", "read"},
            QString("1 page has not been read yet; the PDF holds its picture without text."));
        row("one not read, one changed since", QStringList{"read", "stale", "none"},
            QString("2 pages have not been read yet; the PDF holds their pictures without "
                    "text."));
    }
    void picturesWithTheirWords()
    {
        QFETCH(QStringList, states);
        QFETCH(QString, message);
        PdfHome h;
        QVERIFY(h.fill());
        h.index(states);
        QTemporaryDir out;
        const QString pdf = out.filePath("statement.pdf");
        h.choosers.queueSaveFile(pdf);
        if (!message.isEmpty())
            h.prompter.expect(message);
        SearchablePdfCommand::saveDocument(h.context(), h.document);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(QFileInfo(h.choosers.saveStarts().value(0)).fileName(),
                 QString("March statement.pdf"));

        // The shortcut is left out; the pictures come in page order, each the size of its paper.
        const QList<QSizeF> sizes = pageSizes(pdf);
        QCOMPARE(sizes.size(), pictures().size());
        for (int i = 0; i < pictures().size(); ++i) {
            const Picture& p = pictures().at(i);
            QCOMPARE(sizes.at(i).toSize(),
                     (QSizeF(p.size) * 72.0 / (p.dpi ? p.dpi : 300)).toSize());
            QCOMPARE(pageText(pdf, i + 1), states.at(i) == "read" ? p.lines.join(' ') : "");
        }

        // The words are laid over the first picture, yet only the picture shows.
        const QString shot = out.filePath("shot");
        QVERIFY(run("pdftoppm",
                    {"-r", "300", "-gray", "-f", "1", "-l", "1", "-singlefile", pdf, shot}));
        const QImage rendered(shot + ".pgm");
        const QImage picture = pictures().at(0).image();
        QVERIFY(qAbs(rendered.width() - picture.width()) <= 1);
        const Darkness dark = compare(rendered, picture);
        QVERIFY(dark.shown > dark.picture / 2);
        QCOMPARE(dark.over, 0);

        // The chooser opens where the last PDF went.
        h.choosers.queueSaveFile(std::nullopt);
        SearchablePdfCommand::saveDocument(h.context(), h.document);
        QCOMPARE(h.choosers.saveStarts().value(1), out.filePath("March statement.pdf"));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void noFileWhenItCannotBeWhole_data()
    {
        // `target`: where the file is asked for, under the output directory; `message`: how
        // the one message begins ("<pdf>": the file, "<picture>": the picture), "" for none.
        columns<QString, QString, bool, QString>({"target", "document", "cancel", "message"});
        const QString unwritten = "The PDF '<pdf>' could not be written: ";
        row("cancelled", "statement.pdf", "March statement", true, "");
        row("directory missing", "missing/statement.pdf", "March statement", false, unwritten);
        row("a file in the directory's place", "plain.txt/statement.pdf", "March statement", false,
            unwritten);
        row("picture gone", "statement.pdf", "gone", false,
            "The picture of page 3 ('<picture>') could not be read: ");
        row("shortcuts only", "statement.pdf", "Links", false,
            "The document 'Links' has no scanned pages to save as a PDF.");
    }
    void noFileWhenItCannotBeWhole()
    {
        const auto [target, document, cancel, message] =
            fetch<QString, QString, bool, QString>("target", "document", "cancel", "message");
        PdfHome h;
        QVERIFY(h.fill());
        h.index({"read", "read", "read"});
        QTemporaryDir out;
        QFile plain(out.filePath("plain.txt"));
        QVERIFY(plain.open(QIODevice::WriteOnly) && plain.write("in the way") > 0);
        plain.close();
        const QString pdf = out.filePath(target);
        h.choosers.queueSaveFile(pdf);
        if (document == "gone")
            QVERIFY(QFile::remove(h.pagePath(1)));
        CancellingProgress progress;
        SearchablePdfCommand::saveDocument(h.context(cancel ? &progress : nullptr),
                                           document == "Links" ? h.links : h.document);
        const QStringList seen = h.prompter.seen();
        QCOMPARE(seen.size(), message.isEmpty() ? 0 : 1);
        const QString begins =
            QString(message).replace("<pdf>", pdf).replace("<picture>", h.pagePath(1));
        QVERIFY2(seen.value(0, "").startsWith(begins), qPrintable(seen.value(0)));
        if (cancel)
            QVERIFY(progress.cancelShown);
        // Nothing is left behind, not even a part of the file.
        const QDir directory(QFileInfo(pdf).absolutePath());
        QCOMPARE(directory.exists() ? directory.entryList(QDir::Files).filter("statement")
                                    : QStringList(),
                 QStringList());
        // The shortcut document asks for no file at all.
        QCOMPARE(h.choosers.saveStarts().size(), document == "Links" ? 0 : 1);
    }
};

QMR_TEST(TestSearchablePdf)
#include "testsearchablepdf.moc"
