#include <QElapsedTimer>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <cerrno>
#include <csignal>
#include <dlfcn.h>
#include <memory>
#include <pthread.h>
#include <thread>
#include <unistd.h>

#include "core/brokenpipes.h"
#include "hangingsane.h"
#include "sanetestbackend.h"
#include "scan/sanesource.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using Options = QList<QPair<QString, QVariant>>;
using Reason = qmr::ScanEnd::Reason;
using qmr::test::columns;
using qmr::test::fetch;
using qmr::test::row;

Q_DECLARE_METATYPE(qmr::ScanColour)
Q_DECLARE_METATYPE(qmr::test::HangingSane::Call)

namespace {

const QString kPicture = QStringLiteral("test-picture \"Color pattern\"");

// The signals of a source, and what they carried.
struct Spies
{
    explicit Spies(ScanSource& s)
        : opened(&s, &ScanSource::opened), changed(&s, &ScanSource::optionsChanged),
          finished(&s, &ScanSource::finished)
    {
    }
    QVector<ScanOption> options(QSignalSpy& spy, int i = 0) const
    {
        return spy.at(i).at(0).value<QVector<ScanOption>>();
    }
    Reason reason() const { return finished.first().first().value<ScanEnd>().reason; }
    QSignalSpy opened, changed, finished;
};

// One scan from open to end, with options set between open and reading. `cancelAt` cancels
// once that sheet is a tenth read.
struct Scan
{
    ScanSetup setup;
    QVector<QImage> pages;
    QList<int> percents;
    ScanEnd end;
    bool ended = false;
    qint64 cancelledAt = -1; // ms since the start
    qint64 endedAt = -1;
};

Scan runScan(ScanSource& source, const ScanRequest& request, const Options& options = {},
             int cancelAt = 0, const std::function<void(int)>& afterPage = {})
{
    Scan scan;
    Spies spy(source);
    QSignalSpy pages(&source, &ScanSource::pageAcquired);
    QElapsedTimer t;
    t.start();
    QObject guard;
    QObject::connect(&source, &ScanSource::sheetProgress, &guard, [&](int sheet, int percent) {
        if (sheet == 1)
            scan.percents << percent;
        if (cancelAt > 0 && sheet == cancelAt && percent >= 10 && scan.cancelledAt < 0) {
            scan.cancelledAt = t.elapsed();
            source.cancel();
        }
    });
    QObject::connect(&source, &ScanSource::finished, &guard, [&] { scan.endedAt = t.elapsed(); });
    source.open(request);
    while (spy.opened.isEmpty() && spy.finished.isEmpty() && t.elapsed() < 20000)
        QTest::qWait(5);
    if (!spy.opened.isEmpty()) {
        scan.setup = spy.opened.first().at(1).value<ScanSetup>();
        for (const auto& [name, value] : options) {
            source.setOption(name, value);
            test::waitFor(spy.changed, spy.changed.count() + 1);
        }
        source.readPages();
        while (spy.finished.isEmpty() && t.elapsed() < 60000) {
            QTest::qWait(2);
            if (pages.count() > scan.pages.size()) {
                scan.pages << pages.at(scan.pages.size()).at(0).value<QImage>();
                if (afterPage)
                    afterPage(scan.pages.size());
                source.nextPage();
            }
        }
    }
    if ((scan.ended = !spy.finished.isEmpty()))
        scan.end = spy.finished.first().first().value<ScanEnd>();
    return scan;
}

ScanRequest request(ScanColour colour, int dpi = 50, bool feeder = false)
{
    ScanRequest r;
    r.device = QStringLiteral("test:0");
    r.colour = colour;
    r.dpi = dpi;
    r.feeder = r.duplex = feeder;
    return r;
}

// The longest time the window's thread went without serving its timer.
class LongestGap
{
public:
    LongestGap()
    {
        m_ticks.setInterval(5);
        QObject::connect(&m_ticks, &QTimer::timeout, [this] {
            m_longest = qMax(m_longest, m_since.restart());
            ++m_count;
        });
        m_since.start();
        m_ticks.start();
    }
    qint64 ms() { return qMax(m_longest, m_since.elapsed()); }
    int ticks() const { return m_count; }

private:
    QTimer m_ticks;
    QElapsedTimer m_since;
    qint64 m_longest = 0;
    int m_count = 0;
};

} // namespace

class TestSaneSource : public QObject
{
    Q_OBJECT
private slots:
    void deviceList_data()
    {
        columns<QStringList, QStringList>({"conf", "names"});
        row("as installed", QStringList(), QStringList{"test:0", "test:1"});
        row("three", QStringList{"number_of_devices 3"}, QStringList{"test:0", "test:1", "test:2"});
    }
    void deviceList()
    {
        const auto [conf, names] = fetch<QStringList, QStringList>("conf", "names");
        test::SaneTestBackend backend(conf);
        SaneSource source;
        QSignalSpy found(&source, &ScanSource::devicesFound);
        source.findDevices();
        QVERIFY(test::waitFor(found));
        QCOMPARE(found.first().at(1).toString(), QString());
        QStringList seen;
        for (const ScanDevice& d : found.first().at(0).value<QVector<ScanDevice>>()) {
            seen << d.name;
            QCOMPARE(QStringList({d.vendor, d.model, d.label()}),
                     QStringList({"Noname", "frontend-tester",
                                  QStringLiteral("Noname frontend-tester (%1)").arg(d.name)}));
        }
        QCOMPARE(seen, names);
    }

    // The pages as the system's own command-line frontend reads them with the same settings,
    // also from three passes of one band each, lines with wasted pixels at their ends, a
    // device that does not know the page's length, and a hand scanner that knows its width
    // alone.
    void pages_data()
    {
        // option: set between open and reading ("" for none); mode and bits: the frontend's.
        columns<ScanColour, QString, QVariant, QString, QString, QImage::Format>(
            {"colour", "option", "value", "mode", "bits", "format"});
        const auto rgb = QImage::Format_RGB32, grey = QImage::Format_Grayscale8;
        const auto colour = ScanColour::Colour, gray = ScanColour::Grey;
        row("colour", colour, "", QVariant(), "Color", "8", rgb);
        row("grey", gray, "", QVariant(), "Gray", "8", grey);
        row("line art", ScanColour::LineArt, "", QVariant(), "Gray", "1", QImage::Format_Mono);
        row("grey, 16 bits", gray, "depth", QVariant(16), "Gray", "16", grey);
        row("three passes", colour, "three-pass", QVariant(true), "Color", "8", rgb);
        row("wasted pixels, grey", gray, "ppl-loss", QVariant(7), "Gray", "8", grey);
        row("small reads", colour, "read-limit", QVariant(true), "Color", "8", rgb);
        row("hand scanner", gray, "hand-scanner", QVariant(true), "Gray", "8", grey);
    }
    void pages()
    {
        const auto [colour, option, value, mode, bits, format] =
            fetch<ScanColour, QString, QVariant, QString, QString, QImage::Format>(
                "colour", "option", "value", "mode", "bits", "format");
        test::SaneTestBackend backend({kPicture});
        const QImage expected = backend.scanimage(
            {"-d", "test:0", "--resolution", "50", "--mode", mode, "--depth", bits});
        QVERIFY(!expected.isNull());
        SaneSource source;
        const Scan scan = runScan(source, request(colour),
                                  option.isEmpty() ? Options() : Options{{option, value}});
        QVERIFY(scan.ended);
        QCOMPARE(scan.end.reason, Reason::Done);
        QCOMPARE(scan.pages.size(), 1);
        const QImage& image = scan.pages.first();
        QCOMPARE(image.format(), format);
        QCOMPARE(image.dotsPerMeterX(), qRound(50 / 0.0254));
        if (option == QLatin1String("ppl-loss")) { // shorter lines; the rest of the page the same
            QCOMPARE(image.size(), QSize(expected.width() - value.toInt(), expected.height()));
            return;
        }
        if (option == QLatin1String("hand-scanner")) {     // 11 cm; the length comes at the end
            QCOMPARE(image.width(), int(110 / 25.4 * 50)); // whole pixels
            QVERIFY(image.height() > 0 && scan.percents.contains(-1));
            return;
        }
        QCOMPARE(image.size(), expected.size());
        // 16-bit samples are cut to their high byte here and rounded by the file reader.
        const int tolerance = option == QLatin1String("depth") ? 1 : 0;
        int worst = 0; // the largest difference of a sample
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                for (const int shift : {0, 8, 16})
                    worst = qMax(worst, qAbs(int(image.pixel(x, y) >> shift & 0xff) -
                                             int(expected.pixel(x, y) >> shift & 0xff)));
        QVERIFY2(worst <= tolerance, qPrintable(QString::number(worst)));
    }

    // The feeder reads every sheet until it is empty (the test device holds ten); without it,
    // one page. A device that fails says why; the pages read before stay. Cancel in the middle
    // of a sheet stops the device at once; between two sheets the next one is not read; either
    // way the device is free again for the next scan.
    void runs_data()
    {
        // failAfter: pages read before the device is told to fail with `code` (-1: at open), or
        // before Cancel: "cancel" in the middle of the next sheet, "cancel between" after it.
        columns<QString, bool, QString, int, QString, int>(
            {"device", "feeder", "code", "failAfter", "status", "pages"});
        const char* jammed = "Document feeder jammed";
        row("feeder", "test:0", true, "", 0, "", 10);
        row("flatbed", "test:0", false, "", 0, "", 1);
        row("no such device", "test:9", true, "", -1, "Invalid argument", 0);
        row("jammed at once", "test:0", true, "SANE_STATUS_JAMMED", 0, jammed, 0);
        row("jammed on the third sheet", "test:0", true, "SANE_STATUS_JAMMED", 2, jammed, 2);
        row("cover open", "test:0", true, "SANE_STATUS_COVER_OPEN", 1, "Scanner cover is open", 1);
        row("input and output", "test:0", true, "SANE_STATUS_IO_ERROR", 0,
            "Error during device I/O", 0);
        row("cancelled in the middle of a sheet", "test:0", true, "cancel", 2, "", 2);
        row("cancelled between two sheets", "test:0", true, "cancel between", 4, "", 4);
    }
    void runs()
    {
        const auto [device, feeder, code, failAfter, status, pages] =
            fetch<QString, bool, QString, int, QString, int>("device", "feeder", "code",
                                                             "failAfter", "status", "pages");
        const bool midSheet = code == QLatin1String("cancel");
        const bool cancel = code.startsWith(QLatin1String("cancel"));
        const bool fails = !code.isEmpty() && !cancel;
        // With Cancel a sheet takes half a second to come.
        test::SaneTestBackend backend(
            cancel ? QStringList{kPicture, "read-delay true", "read-delay-duration 50000"}
                   : QStringList{kPicture});
        SaneSource source;
        ScanRequest r = request(ScanColour::Colour, midSheet ? 75 : cancel ? 20 : 30, feeder);
        r.device = device;
        const Scan scan = runScan(
            source, r, fails && failAfter == 0 ? Options{{"read-return-value", code}} : Options(),
            midSheet ? pages + 1 : 0, [&](int read) {
                if (fails && read == failAfter)
                    source.setOption(QStringLiteral("read-return-value"), code);
                if (cancel && !midSheet && read == pages)
                    source.cancel();
            });
        QVERIFY(scan.ended);
        QCOMPARE(scan.end.reason, !status.isEmpty() ? Reason::Failed
                                  : cancel          ? Reason::Cancelled
                                                    : Reason::Done);
        QCOMPARE(scan.end.status, status);
        QCOMPARE(scan.end.atOpen, failAfter < 0);
        QCOMPARE(scan.pages.size(), pages);
        for (const QImage& page : scan.pages)
            QVERIFY(!page.isNull());
        if (!status.isEmpty())
            QCOMPARE(scan.end.device, device);
        if (failAfter >= 0) {
            QCOMPARE(scan.setup.source, feeder ? QStringLiteral("Automatic Document Feeder")
                                               : QStringLiteral("Flatbed"));
            QCOMPARE(scan.setup.feeder, feeder);
            QCOMPARE(scan.setup.duplex, false); // the test device cannot turn sheets over
        }
        if (!cancel)
            return;
        if (midSheet) {
            QVERIFY(scan.cancelledAt > 0);
            QVERIFY2(scan.endedAt - scan.cancelledAt < 300,
                     qPrintable(QStringLiteral("%1 ms").arg(scan.endedAt - scan.cancelledAt)));
            // The progress of the first sheet climbed to its end.
            QVERIFY(scan.percents.size() > 5);
            QCOMPARE(scan.percents.last(), 100);
        }
        const Scan next = runScan(source, request(ScanColour::Grey, 20, false));
        QCOMPARE(next.end.reason, Reason::Done);
        QCOMPARE(next.pages.size(), 1);
    }

    // A device that stops answering inside a call never holds up the window: it keeps
    // answering, a cancel ends the scan at once, and closing the source waits 2 s at most
    // and leaves the device's thread behind, which ends and lets go of all it held once the
    // call returns.
    void hangingDevice_data()
    {
        using Call = test::HangingSane::Call;
        columns<Call>({"hangIn"});
        row("looking for devices", Call::Devices);
        row("cancel of a read", Call::Cancel);
        row("close", Call::Close);
    }
    void hangingDevice()
    {
        using Call = test::HangingSane::Call;
        QFETCH(Call, hangIn);
        auto device = std::make_shared<test::HangingSane>(hangIn);
        const std::weak_ptr<test::HangingSane> held = device;
        auto source = std::make_unique<SaneSource>(device);
        // A failed check lets the device go before the source is closed.
        const auto letGo = qScopeGuard([&] {
            if (const auto d = held.lock())
                d->release();
        });
        Spies spy(*source);
        LongestGap window;
        if (hangIn == Call::Devices) {
            source->findDevices();
        } else {
            ScanRequest r = request(ScanColour::Grey);
            r.device = QStringLiteral("hang:0");
            source->open(r);
            QVERIFY(test::waitFor(spy.opened));
            if (hangIn == Call::Cancel) {
                source->readPages();
                QTRY_VERIFY(device->reading());
                source->cancel();
            } else {
                source->close();
            }
            // The scan ends while the device is still stopping (it would stop in 10 s).
            QVERIFY(test::waitFor(spy.finished, 1, 5000));
            QCOMPARE(spy.reason(), Reason::Cancelled);
        }
        QTRY_VERIFY(device->hanging());
        // The window goes on for a while beside the hanging device.
        const int ticks = window.ticks();
        QTRY_VERIFY(window.ticks() >= ticks + 20);
        QVERIFY2(window.ms() <= 50, qPrintable(QStringLiteral("%1 ms").arg(window.ms())));

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("did not answer within 2 s"));
        QElapsedTimer closing;
        closing.start();
        source.reset();
        QVERIFY2(closing.elapsed() < 2500,
                 qPrintable(QStringLiteral("%1 ms").arg(closing.elapsed())));
        device->release();
        device.reset();
        QTRY_VERIFY(held.expired());
    }

    // A backend's reader thread asks to be cancellable anywhere; it stays cancellable only where
    // that is safe, or a cancel inside the allocator would leave it locked for every thread.
    void readerThreadsStopOnlyWhereSafe()
    {
        using SetType = int (*)(int, int*);
        // What a backend loaded at run time calls, and the C library's own.
        const auto asBackend =
            reinterpret_cast<SetType>(dlsym(RTLD_DEFAULT, "pthread_setcanceltype"));
        const auto cLibrary = reinterpret_cast<SetType>(dlsym(RTLD_NEXT, "pthread_setcanceltype"));
        QVERIFY(asBackend && cLibrary);
        int type = -1;
        std::thread([&] {
            asBackend(PTHREAD_CANCEL_ASYNCHRONOUS, nullptr);
            cLibrary(PTHREAD_CANCEL_DEFERRED, &type);
        }).join();
        QCOMPARE(type, int(PTHREAD_CANCEL_DEFERRED));
    }

    // The backend's reader writes into a pipe that a cancel has closed. The write must fail
    // with an error and not end the program. SANE's thread helper puts an ignored SIGPIPE back
    // to its default as each scan ends, so the program's setting must outlast a scan.
    void aWriteIntoAClosedPipeFails()
    {
        struct sigaction asIs = {};
        ::sigaction(SIGPIPE, nullptr, &asIs); // the test library's
        const auto putBack = qScopeGuard([&] { ::sigaction(SIGPIPE, &asIs, nullptr); });
        surviveBrokenPipes();
        struct sigaction before = {};
        ::sigaction(SIGPIPE, nullptr, &before);
        {
            test::SaneTestBackend backend({kPicture});
            SaneSource source;
            QCOMPARE(runScan(source, request(ScanColour::Grey, 30)).end.reason, Reason::Done);
        }
        struct sigaction after = {};
        ::sigaction(SIGPIPE, nullptr, &after);
        QVERIFY2(after.sa_handler == before.sa_handler, "a broken pipe would end the program");
        int ends[2];
        QCOMPARE(::pipe(ends), 0);
        ::close(ends[0]);
        errno = 0;
        QCOMPARE(::write(ends[1], "x", 1), ssize_t(-1));
        QCOMPARE(errno, EPIPE);
        ::close(ends[1]);
    }

    // The options as the device describes them, the resolution nearest to the one asked for,
    // and a change that brings others to life.
    void options_data()
    {
        columns<int, double>({"asked", "taken"});
        row("as asked", 150, 150.0);
        row("above the device", 4800, 1200.0);
        row("below the device", 0, 1.0);
    }
    void options()
    {
        const auto [asked, taken] = fetch<int, double>("asked", "taken");
        test::SaneTestBackend backend;
        SaneSource source;
        Spies spy(source);
        source.open(request(ScanColour::Grey, asked));
        QVERIFY(test::waitFor(spy.opened));
        const auto setup = spy.opened.first().at(1).value<ScanSetup>();
        QCOMPARE(setup.dpi, taken);
        QCOMPARE(setup.mode, QStringLiteral("Gray"));
        QCOMPARE(setup.device, QStringLiteral("test:0")); // no search was made
        auto options = spy.options(spy.opened);
        const auto named = [&](const char* name) -> const ScanOption* {
            for (const ScanOption& o : options)
                if (o.name == QLatin1String(name))
                    return &o;
            return nullptr;
        };
        const ScanOption* resolution = named("resolution");
        QVERIFY(resolution);
        QCOMPARE(resolution->value.toDouble(), taken);
        QCOMPARE(resolution->unit, QStringLiteral("dpi"));
        QCOMPARE(resolution->constraint, ScanOption::Constraint::Range);
        const ScanOption* mode = named("mode");
        QVERIFY(mode);
        QCOMPARE(mode->strings, (QStringList{"Gray", "Color"}));
        QCOMPARE(mode->value.toString(), QStringLiteral("Gray"));
        QCOMPARE(mode->group, QStringLiteral("Scan Mode"));
        QVERIFY(named("three-pass") && !named("three-pass")->active); // only in colour
        QVERIFY(!named("int-constraint-range") || !named("int-constraint-range")->active);

        source.setOption("mode", "Color");
        QVERIFY(test::waitFor(spy.changed));
        QCOMPARE(spy.changed.first().at(1).toString(), QString());
        options = spy.options(spy.changed);
        QCOMPARE(named("mode")->value.toString(), QStringLiteral("Color"));
        QVERIFY(named("three-pass")->active);

        source.setOption("enable-test-options", true);
        QVERIFY(test::waitFor(spy.changed, 2));
        options = spy.options(spy.changed, 1);
        const ScanOption* ranged = named("int-constraint-range");
        QVERIFY(ranged && ranged->active);
        QCOMPARE(QList<double>({ranged->minimum, ranged->maximum, ranged->quant}),
                 QList<double>({4, 192, 2}));
        QVERIFY(named("int-constraint-word-list") &&
                named("int-constraint-word-list")->words.contains(42));
        const ScanOption* array = named("int-constraint-array");
        QVERIFY(array && array->count > 1 && !array->editable());

        // A value the device refuses comes back with its reason.
        source.setOption("mode", "Sepia");
        QVERIFY(test::waitFor(spy.changed, 3));
        QCOMPARE(spy.changed.last().at(1).toString(), QStringLiteral("Invalid argument"));
        source.close();
        QVERIFY(test::waitFor(spy.finished));
        QCOMPARE(spy.reason(), Reason::Cancelled);
    }
};

QMR_TEST(TestSaneSource)
#include "testsanesource.moc"
