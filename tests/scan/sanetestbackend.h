#pragma once

#include <QByteArray>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QSignalSpy>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include "scan/scansource.h"

namespace qmr::test {

// SANE's own test backend and nothing else: a configuration directory whose dll.conf lists
// only "test", so that no real device is ever probed. `conf` lines go to test.conf (e.g.
// `test-picture "Color pattern"`) until the backend object goes. The library reads the
// directory's name once a process and its files at every start, so one directory serves
// the whole test run; make the backend before the source.
class SaneTestBackend
{
public:
    explicit SaneTestBackend(const QStringList& conf = {})
    {
        write(QStringLiteral("dll.conf"), QStringLiteral("test\n"));
        write(QStringLiteral("test.conf"), conf.join(QLatin1Char('\n')) + QLatin1Char('\n'));
        qputenv("SANE_CONFIG_DIR", directory().toLocal8Bit());
    }
    ~SaneTestBackend() { write(QStringLiteral("test.conf"), QString()); }
    static QString directory()
    {
        static const QTemporaryDir dir;
        return dir.path();
    }

    // What the system's own command-line frontend reads with the same options, as an image;
    // null when it fails.
    QImage scanimage(const QStringList& arguments, int timeoutMs = 20000) const
    {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("SANE_CONFIG_DIR"), directory());
        p.setProcessEnvironment(env);
        p.start(QStringLiteral("scanimage"),
                QStringList{QStringLiteral("--format=pnm")} + arguments);
        if (!p.waitForFinished(timeoutMs)) {
            p.kill();
            p.waitForFinished();
            return QImage();
        }
        return QImage::fromData(p.readAllStandardOutput());
    }

private:
    static void write(const QString& name, const QString& text)
    {
        QFile f(QDir(directory()).filePath(name));
        if (f.open(QIODevice::WriteOnly))
            f.write(text.toUtf8());
    }
};

// Waits (bounded) for a signal of the source; true when it came.
inline bool waitFor(QSignalSpy& spy, int count = 1, int timeoutMs = 20000)
{
    QElapsedTimer t;
    t.start();
    while (spy.count() < count && t.elapsed() < timeoutMs)
        spy.wait(qMax(1, int(qMin<qint64>(200, timeoutMs - t.elapsed()))));
    return spy.count() >= count;
}

} // namespace qmr::test
