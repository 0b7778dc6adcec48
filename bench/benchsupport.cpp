#include "benchsupport.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QRandomGenerator>
#include <algorithm>

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

} // namespace qmr::bench
