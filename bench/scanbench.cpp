// A feeder run of ten colour pages at 150 dpi from SANE's test device, saved at once into a
// document: the time beyond the device's own reading (scanimage with the same settings in
// the same run) per page, and the longest stop of the event loop meanwhile.
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>

#include "scan/sanesource.h"
#include "scan/scanflow.h"
#include "tests/scan/scanharness.h"

using namespace qmr;

namespace {

constexpr int kPages = 10;
constexpr int kRuns = 3;

void write(const QString& path, const QByteArray& text)
{
    QFile f(path);
    if (f.open(QIODevice::WriteOnly))
        f.write(text);
}

// scanimage reading the whole feeder with the same settings; ms, or -1.
qint64 scanimageRun(const QString& configDir, const QString& outDir)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SANE_CONFIG_DIR"), configDir);
    p.setProcessEnvironment(env);
    p.setWorkingDirectory(outDir);
    QElapsedTimer t;
    t.start();
    p.start(QStringLiteral("scanimage"),
            {"-d", "test:0", "--resolution", "150", "--mode", "Color", "--source",
             "Automatic Document Feeder", "--format=pnm", "--batch=page%d.pnm"});
    if (!p.waitForFinished(120000) || p.exitStatus() != QProcess::NormalExit)
        return -1;
    const qint64 ms = t.elapsed();
    const int pages = QDir(outDir).entryList({"page*.pnm"}, QDir::Files).size();
    if (pages != kPages) {
        std::fprintf(stderr, "scanimage read %d pages\n", pages);
        return -1;
    }
    return ms;
}

struct FlowRun
{
    qint64 ms = -1;
    qint64 maxStall = 0;
    int saved = 0;
};

FlowRun flowRun()
{
    test::ScanHarness h;
    h.settings().setFlag(keys::ScanFeeder, true);
    h.settings().set(keys::DocDpi, QStringLiteral("150"));
    SaneSource source;
    ScanFlow flow(h.context(), source);
    // The gap between two ticks of a 2 ms timer is how long the loop stood still.
    QElapsedTimer clock;
    qint64 last = 0;
    FlowRun run;
    QTimer ticker;
    ticker.setInterval(2);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        run.maxStall = std::max(run.maxStall, now - last);
        last = now;
    });
    clock.start();
    ticker.start();
    flow.scanToViewer(NodeKey::of(Level::Document, h.five));
    run.ms = clock.elapsed();
    run.maxStall = std::max(run.maxStall, run.ms - last);
    run.saved = flow.pagesSaved();
    if (!h.prompter.verify())
        std::fprintf(stderr, "%s\n", qPrintable(h.prompter.report()));
    return run;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QTemporaryDir config;
    write(config.filePath("dll.conf"), "test\n");
    // The largest page the test device offers (200 by 170 mm), near a letter page in pixels.
    write(config.filePath("test.conf"), "test-picture \"Color pattern\"\nbr_x 200.0\nbr_y 170.0\n");
    qputenv("SANE_CONFIG_DIR", config.path().toLocal8Bit());

    QList<qint64> device, flow, stalls;
    for (int i = 0; i < kRuns; ++i) {
        QTemporaryDir out;
        const qint64 d = scanimageRun(config.path(), out.path());
        const FlowRun f = flowRun();
        if (d < 0 || f.saved != kPages) {
            std::fprintf(stderr, "run %d failed: scanimage %lld ms, %d pages saved\n", i + 1,
                         static_cast<long long>(d), f.saved);
            return 1;
        }
        std::printf("run %d: scanimage %lld ms, scan flow %lld ms, longest loop stop %lld ms\n",
                    i + 1, static_cast<long long>(d), static_cast<long long>(f.ms),
                    static_cast<long long>(f.maxStall));
        device << d;
        flow << f.ms;
        stalls << f.maxStall;
    }
    std::sort(device.begin(), device.end());
    std::sort(flow.begin(), flow.end());
    const qint64 beyond = (flow.at(kRuns / 2) - device.at(kRuns / 2)) / kPages;
    const qint64 stall = *std::max_element(stalls.begin(), stalls.end());
    std::printf("median: %lld ms beyond the device per page (goal 80), longest loop stop "
                "%lld ms (goal 50)\n",
                static_cast<long long>(beyond), static_cast<long long>(stall));
    return beyond <= 80 && stall <= 50 ? 0 : 2;
}
