// Times the text on the pages.
//
//   build/bench/bench_text [--pages N] [--recognition K] [--look N] [--keep DIR]
//
// The index: N pages (default 100,000) of generated text, 180 to 320 words a page drawn from
// a vocabulary of 30,000 words with the frequencies of real text (Zipf), each word with its
// box; one rare word stands on 150 pages. Printed: the size of the index file against the raw
// text, and the median of 21 searches for the rare word, for two words and for a phrase.
// --keep DIR writes the index into DIR and leaves it there, to look into.
//
// Recognition: K pages (default 4) made at 300 dpi with known text in two columns, grain and a
// 1.5 degree skew, read by the program's own worker process and by the `tesseract` command
// (same language, page segmentation and one thread), A B A B; printed: pages a second of each,
// their ratio, and the share of the known words that the worker read right.
//
// The look: a store of N pages (default 100,000) with their files and their text read, looked
// over for pages to read, as the window does after pages come in; printed: how long, and the
// longest time the window's thread went without answering meanwhile.

#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "benchsupport.h"
#include "core/apphome.h"
#include "core/pagewords.h"
#include "store/database.h"
#include "store/pagepaths.h"
#include "store/schema.h"
#include "store/textindex.h"
#include "text/textreader.h"
#include "text/textreading.h"
#include "text/textworker.h"

using namespace qmr;

namespace {

void benchIndex(int pageCount, const QString& keep)
{
    QTemporaryDir temporary;
    const QString home = keep.isEmpty() ? temporary.path() : keep;
    QRandomGenerator random(17);
    const QStringList vocabulary = bench::textVocabulary(random);
    const QString rare = QStringLiteral("zephyrquill");
    QSet<int> rarePages;
    while (rarePages.size() < 150)
        rarePages.insert(1 + int(random.bounded(pageCount)));

    TextIndex index(home);
    index.open();
    qint64 rawBytes = 0;
    QElapsedTimer clock;
    clock.start();
    constexpr int kBatch = 2000;
    for (int first = 1; first <= pageCount; first += kBatch) {
        index.together([&] {
            for (int id = first; id < first + kBatch && id <= pageCount; ++id) {
                const QList<TextIndex::Word> words =
                    bench::pageWords(random, vocabulary, rarePages.contains(id) ? rare : QString());
                for (const TextIndex::Word& word : words)
                    rawBytes += word.text.toUtf8().size() + 1;
                index.put(id, TextIndex::Stamp{100000 + id, 1700000000000 + id}, words);
            }
        });
    }
    const double fillMs = clock.elapsed();
    const qint64 fileBytes = QFileInfo(index.path()).size();
    std::printf("index: %d pages, raw text %.1f MB, file %.1f MB (%.2fx the text), filled in "
                "%.1f s\n",
                pageCount, rawBytes / 1e6, fileBytes / 1e6, double(fileBytes) / rawBytes,
                fillMs / 1e3);
    const auto time = [&](const char* name, const QString& typed) {
        const PageWords words = PageWords::parse(typed);
        QVector<double> runs;
        qsizetype found = 0;
        for (int i = 0; i < 21; ++i) {
            QElapsedTimer t;
            t.start();
            found = index.pagesWith(words).size();
            runs << t.nsecsElapsed() / 1e6;
        }
        std::printf("search %-28s %6lld pages  median %7.2f ms\n", name, (long long)found,
                    bench::median(runs));
    };
    time("rare word", rare);
    time("rare word and a common one", rare + QStringLiteral(" the"));
    time("two common words", QStringLiteral("invoice payment"));
    time("phrase", QStringLiteral("\"the invoice\""));
    time("beginning", QStringLiteral("zephyr*"));
}

// A line of /proc/PROCESS/status ("VmRSS:", "VmHWM:") in megabytes; 0 when gone.
double residentMb(const QString& process, const char* field)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(int(std::strlen(field))).trimmed().split(' ').first().toDouble() /
                   1024.0;
    return 0;
}

// A page of the two columns of text in `columns`, with grain and a skew.
QImage printedPage(const QStringList& left, const QStringList& right, int seed)
{
    QImage page(2480, 3508, QImage::Format_RGB32);
    page.fill(Qt::white);
    page.setDotsPerMeterX(11811);
    page.setDotsPerMeterY(11811);
    {
        QPainter painter(&page);
        painter.setRenderHint(QPainter::TextAntialiasing);
        painter.translate(1240, 1754);
        painter.rotate(1.5);
        painter.translate(-1240, -1754);
        QFont font(QStringLiteral("DejaVu Serif"));
        font.setPixelSize(46);
        painter.setFont(font);
        painter.setPen(Qt::black);
        for (int i = 0; i < left.size(); ++i)
            painter.drawText(200, 300 + 70 * i, left.at(i));
        for (int i = 0; i < right.size(); ++i)
            painter.drawText(1320, 300 + 70 * i, right.at(i));
    }
    QRandomGenerator random{quint32(seed)};
    for (int i = 0; i < 60000; ++i)
        page.setPixel(int(random.bounded(2480)), int(random.bounded(3508)),
                      random.bounded(2) ? 0xff404040 : 0xffc8c8c8);
    return page;
}

// The longest common run of words in order, for the share read right.
int commonInOrder(const QStringList& a, const QStringList& b)
{
    QVector<int> row(b.size() + 1, 0), next(b.size() + 1, 0);
    for (qsizetype i = 1; i <= a.size(); ++i) {
        for (qsizetype j = 1; j <= b.size(); ++j)
            next[j] = a[i - 1] == b[j - 1] ? row[j - 1] + 1 : std::max(row[j], next[j - 1]);
        std::swap(row, next);
    }
    return row[b.size()];
}

QStringList folded(const QStringList& words)
{
    QStringList result;
    for (const QString& word : words)
        for (const QString& piece : PageWords::wordsOf(word))
            result << PageWords::fold(piece);
    return result;
}

void benchRecognition(int pageCount)
{
    QTemporaryDir dir;
    QRandomGenerator random(5);
    const QStringList common = bench::commonWords();
    QList<TextReader::Page> pages;
    QList<QStringList> known;
    QStringList list;
    for (int p = 0; p < pageCount; ++p) {
        QStringList columns[2];
        QStringList words;
        for (auto& column : columns)
            for (int line = 0; line < 40; ++line) {
                QStringList lineWords;
                for (int w = 0; w < 5; ++w)
                    lineWords << common.at(random.bounded(int(common.size())));
                column << lineWords.join(QLatin1Char(' '));
                words << lineWords;
            }
        const QString path = dir.filePath(QStringLiteral("page%1.png").arg(p + 1));
        printedPage(columns[0], columns[1], p).save(path);
        pages << TextReader::Page{p + 1, path};
        known << folded(words);
        list << path;
    }
    QFile listFile(dir.filePath(QStringLiteral("pages.txt")));
    listFile.open(QIODevice::WriteOnly);
    listFile.write(list.join(QLatin1Char('\n')).toUtf8() + '\n');
    listFile.close();

    double workerMs[2] = {0, 0}, commandMs[2] = {0, 0};
    qint64 right = 0, total = 0;
    for (int round = 0; round < 2; ++round) {
        QTemporaryDir home;
        TextIndex index(home.path());
        index.open();
        TextReader reader(index, {QCoreApplication::applicationFilePath(),
                                  QString::fromLatin1(TextWorker::kOption), "eng"});
        // The worker's memory at its highest, and this program's, looked at as it reads.
        qint64 worker = 0;
        double workerPeakMb = 0, ownPeakMb = 0;
        const double ownBeforeMb = residentMb(QStringLiteral("self"), "VmRSS:");
        QObject::connect(&reader, &TextReader::pageStarted,
                         [&](int, qint64 processId) { worker = processId; });
        QTimer sampler;
        QObject::connect(&sampler, &QTimer::timeout, [&] {
            if (worker > 0)
                workerPeakMb = qMax(workerPeakMb, residentMb(QString::number(worker), "VmHWM:"));
            ownPeakMb = qMax(ownPeakMb, residentMb(QStringLiteral("self"), "VmRSS:"));
        });
        sampler.start(20);
        QElapsedTimer clock;
        clock.start();
        const bench::Watch watched =
            bench::watch([&] { reader.enqueue(pages); }, [&] { return reader.isIdle(); });
        workerMs[round] = clock.elapsed();
        std::printf("reading round %d: the window's longest wait %.1f ms; worker memory at "
                    "most %.0f MB; this program %.0f MB more\n",
                    round + 1, watched.longestStallMs, workerPeakMb, ownPeakMb - ownBeforeMb);
        if (round == 0)
            for (int p = 0; p < pageCount; ++p) {
                const QStringList read = folded(index.textOf(p + 1).split(QLatin1Char(' ')));
                right += commonInOrder(known.at(p), read);
                total += known.at(p).size();
            }

        QProcess command;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("OMP_THREAD_LIMIT"), QStringLiteral("1"));
        command.setProcessEnvironment(environment);
        command.setStandardOutputFile(QProcess::nullDevice());
        command.setStandardErrorFile(QProcess::nullDevice());
        clock.restart();
        command.start(QStringLiteral("tesseract"),
                      {listFile.fileName(), dir.filePath("out"), "-l", "eng", "--psm", "3"});
        command.waitForFinished(-1);
        commandMs[round] = clock.elapsed();
    }
    for (int round = 0; round < 2; ++round)
        std::printf("recognition round %d: worker %.2f pages/s, tesseract command %.2f pages/s, "
                    "ratio %.2f\n",
                    round + 1, pageCount / (workerMs[round] / 1e3),
                    pageCount / (commandMs[round] / 1e3), commandMs[round] / workerMs[round]);
    std::printf("word accuracy: %lld of %lld words, %.1f %%\n", (long long)right, (long long)total,
                100.0 * double(right) / double(total));
}

// The look over the pages that finds what wants reading, on a store of N pages whose files
// are there and whose text is read: how long it takes, and the longest time the window's
// thread went without answering meanwhile (the look runs in a thread of its own); beside it,
// the same look on the window's own thread, as it would stand still for it.
void benchLook(int pageCount)
{
    QTemporaryDir dir;
    const AppHome home(dir.path());
    const PagePaths paths(home);
    Database db;
    StoreSchema::openDatabase(db, home);
    {
        Database::Transaction fill(db);
        db.execute("INSERT INTO Cabinet (Name, Password) VALUES ('Home', '')");
        db.execute("INSERT INTO Drawer (CabinetId, Name) VALUES (?, 'Bills')", {db.lastInsertId()});
        db.execute("INSERT INTO Folder (DrawerId, Name) VALUES (?, 'Gas')", {db.lastInsertId()});
        db.execute("INSERT INTO Document (FolderId, Name) VALUES (?, 'Winter')",
                   {db.lastInsertId()});
        const qint32 document = db.lastInsertId();
        for (int p = 1; p <= pageCount; ++p)
            db.execute("INSERT INTO Page (DocumentId, Name, PageNumber, Filetype) VALUES (?, '', "
                       "?, 'JPG')",
                       {document, p});
        fill.commit();
    }
    TextIndex index(dir.path());
    index.open();
    constexpr int kBatch = 5000;
    for (int first = 1; first <= pageCount; first += kBatch)
        index.together([&] {
            for (int id = first; id < first + kBatch && id <= pageCount; ++id) {
                const QString path = paths.pagePath(id, QString());
                QDir().mkpath(QFileInfo(path).path());
                QFile file(path);
                file.open(QIODevice::WriteOnly);
                file.close();
                index.put(id, TextIndex::Stamp::of(path), {{"page", QRect(1, 1, 9, 9)}});
            }
        });

    QElapsedTimer clock;
    clock.start();
    const Attempt<UnreadPages::Sweep> alone = TextReading::lookOver(db.path(), index.path(), paths);
    const double aloneMs = clock.nsecsElapsed() / 1e6;

    TextReading reading(
        db, paths, "eng",
        {QCoreApplication::applicationFilePath(), QString::fromLatin1(TextWorker::kOption)});
    if (!reading.start()) {
        std::printf("look: the reading does not start\n");
        return;
    }
    bool done = false;
    QObject::connect(&reading, &TextReading::lookedOver, [&](bool) { done = true; });
    const bench::Watch look = bench::watch([&] { reading.refresh(); }, [&] { return done; });
    std::printf("look over %d pages: %.1f ms, the window's longest wait %.1f ms; on the "
                "window's thread it would stand still %.1f ms (%lld to read)\n",
                pageCount, look.elapsedMs, look.longestStallMs, aloneMs,
                alone ? (long long)alone.value().toRead.size() : -1LL);
}

} // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], TextWorker::kOption) == 0)
            return TextWorker::run(argc, argv);
    QGuiApplication app(argc, argv); // fonts, to print the pages
    QCommandLineParser parser;
    const QCommandLineOption pages("pages", "pages in the index", "N", "100000");
    const QCommandLineOption recognition("recognition", "pages to recognise", "K", "4");
    const QCommandLineOption keep("keep", "leave the index in DIR", "DIR");
    const QCommandLineOption look("look", "pages of a store looked over", "N", "100000");
    parser.addOption(look);
    parser.addOption(keep);
    parser.addOption(pages);
    parser.addOption(recognition);
    parser.process(app);
    if (parser.value(pages).toInt() > 0)
        benchIndex(parser.value(pages).toInt(), parser.value(keep));
    if (parser.value(recognition).toInt() > 0)
        benchRecognition(parser.value(recognition).toInt());
    if (parser.value(look).toInt() > 0)
        benchLook(parser.value(look).toInt());
    return 0;
}
