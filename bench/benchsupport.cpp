#include <QDir>
#include <QFile>
#include <QPainter>
#include <QRandomGenerator>
#include <algorithm>

#include "benchsupport.h"

namespace qmr::bench {

QImage scan(const QSize& size, int seed)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator random(seed);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const int grain = int(random.bounded(12)) - 6;
            line[x] = qRgb(246 + grain / 2, 243 + grain / 2, 232 + grain);
        }
    }
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const int w = size.width();
    const int h = size.height();
    p.fillRect(QRect(w / 12, h / 20, w * 5 / 6, h / 14), QColor(30 + seed * 20 % 200, 70, 140));
    QFont font = p.font();
    font.setPixelSize(h / 90);
    p.setFont(font);
    p.setPen(QColor(40, 40, 40));
    const QString words = QStringLiteral("Statement of account for the period ending %1 - "
                                         "balance brought forward, payments received, charges");
    for (int y = h / 6; y < h * 9 / 10; y += h / 60)
        p.drawText(w / 12, y, words.arg(seed + y));
    p.setPen(QPen(QColor(160, 30, 30), w / 300));
    p.drawEllipse(QPoint(w * 3 / 4, h * 4 / 5), w / 10, w / 10);
    return image;
}

double median(QVector<double> values)
{
    if (values.isEmpty())
        return 0;
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

QMap<QString, ThreadTime> threadTimes()
{
    QMap<QString, ThreadTime> threads;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString& id : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile comm(tasks.filePath(id + QStringLiteral("/comm")));
        QFile stat(tasks.filePath(id + QStringLiteral("/schedstat")));
        if (!comm.open(QIODevice::ReadOnly) || !stat.open(QIODevice::ReadOnly))
            continue;
        // Nanoseconds on a core, nanoseconds waiting for one, time slices.
        const QList<QByteArray> fields = stat.readAll().split(' ');
        ThreadTime& t = threads[id];
        t.name = QString::fromUtf8(comm.readAll()).trimmed();
        t.runMs = fields.value(0).toDouble() / 1e6;
        t.waitMs = fields.value(1).toDouble() / 1e6;
    }
    return threads;
}

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
static QString madeUpWord(QRandomGenerator& random)
{
    static const char* const syllables[] = {"ka", "ro", "mi", "ten", "sal", "ver", "do", "lin",
                                            "ar", "gu", "pe", "tor", "ni",  "bes", "ul", "fa"};
    QString word;
    const int parts = 1 + int(random.bounded(4));
    for (int i = 0; i < parts; ++i)
        word += QLatin1String(syllables[random.bounded(16)]);
    return word;
}

namespace {

int zipfIndex(QRandomGenerator& random, int size)
{
    // Inverse of the cumulative share of 1/k: exp(u * ln(size)) - 1.
    const double u = random.generateDouble();
    return std::min(size - 1, int(std::exp(u * std::log(double(size))) - 1.0));
}

} // namespace

QStringList textVocabulary(QRandomGenerator& random)
{
    QStringList vocabulary = commonWords();
    while (vocabulary.size() < 30000)
        vocabulary << madeUpWord(random);
    return vocabulary;
}

QList<TextIndex::Word> pageWords(QRandomGenerator& random, const QStringList& vocabulary,
                                 const QString& rare)
{
    const int count = 180 + int(random.bounded(141));
    QList<TextIndex::Word> words;
    int x = 150, y = 150;
    for (int w = 0; w < count; ++w) {
        // Drawn even where the rare word stands, so that the pages after it stay the same.
        QString text = vocabulary.at(zipfIndex(random, int(vocabulary.size())));
        if (!rare.isEmpty() && w == count / 2)
            text = rare;
        const int width = 25 * int(text.size());
        words << TextIndex::Word{text, QRect(x, y, width, 42)};
        x += width + 20;
        if (x > 2200) {
            x = 150;
            y += 70;
        }
    }
    return words;
}

} // namespace qmr::bench
