// Times the text on the pages.
//
//   build/bench/bench_text [--pages N] [--recognition K] [--keep DIR]
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

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "benchsupport.h"
#include "core/pagewords.h"
#include "store/textindex.h"
#include "text/textreader.h"
#include "text/textworker.h"

using namespace qmr;

namespace {

// Common words of English, for pages a recogniser reads with its language model.
const char* const kCommon =
    "the of and to in is that for it as was with be by on not he this are or his from at which "
    "but have an they you were her she there been one all we their has would when if more no "
    "out so said what up its about than into them can only other time new some could these two "
    "may first then do any like my now over such our man me even most made after also did many "
    "before must through back years where much your way well down should because each just "
    "those people how too little state good very make world still own see men work long get "
    "here between both life being under never day same another know while last might us great "
    "old year off come since against go came right used take three invoice account payment "
    "amount total balance due date number customer service water heating insurance policy "
    "contract bank statement receipt order delivery address telephone reference period annual "
    "monthly tax return office school doctor garden repair";

QStringList commonWords()
{
    return QString::fromLatin1(kCommon).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// A made-up word of 3 to 10 letters.
QString madeUpWord(QRandomGenerator& random)
{
    static const char* const syllables[] = {"ka", "ro", "mi", "ten", "sal", "ver", "do", "lin",
                                            "ar", "gu", "pe", "tor", "ni",  "bes", "ul", "fa"};
    QString word;
    const int parts = 1 + int(random.bounded(4));
    for (int i = 0; i < parts; ++i)
        word += QLatin1String(syllables[random.bounded(16)]);
    return word;
}

int zipfIndex(QRandomGenerator& random, int size)
{
    // Inverse of the cumulative share of 1/k: exp(u * ln(size)) - 1.
    const double u = random.generateDouble();
    return std::min(size - 1, int(std::exp(u * std::log(double(size))) - 1.0));
}

void benchIndex(int pageCount, const QString& keep)
{
    QTemporaryDir temporary;
    const QString home = keep.isEmpty() ? temporary.path() : keep;
    QRandomGenerator random(17);
    QStringList vocabulary = commonWords();
    while (vocabulary.size() < 30000)
        vocabulary << madeUpWord(random);
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
                QList<TextIndex::Word> words;
                const int count = 180 + int(random.bounded(141));
                int x = 150, y = 150;
                for (int w = 0; w < count; ++w) {
                    QString text = vocabulary.at(zipfIndex(random, int(vocabulary.size())));
                    if (w == count / 2 && rarePages.contains(id))
                        text = rare;
                    const int width = 25 * int(text.size());
                    words << TextIndex::Word{text, QRect(x, y, width, 42)};
                    rawBytes += text.toUtf8().size() + 1;
                    x += width + 20;
                    if (x > 2200) {
                        x = 150;
                        y += 70;
                    }
                }
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
    const QStringList common = commonWords();
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
        QEventLoop loop;
        QObject::connect(&reader, &TextReader::idle, &loop, &QEventLoop::quit);
        QElapsedTimer clock;
        clock.start();
        reader.enqueue(pages);
        loop.exec();
        workerMs[round] = clock.elapsed();
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
    parser.addOption(keep);
    parser.addOption(pages);
    parser.addOption(recognition);
    parser.process(app);
    if (parser.value(pages).toInt() > 0)
        benchIndex(parser.value(pages).toInt(), parser.value(keep));
    if (parser.value(recognition).toInt() > 0)
        benchRecognition(parser.value(recognition).toInt());
    return 0;
}
