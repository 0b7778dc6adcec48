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

#include "hangingsane.h"
#include "sanetestbackend.h"
#include "core/brokenpipes.h"
#include "scan/sanesource.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using Options = QList<QPair<QString, QVariant>>;
using Reason = qmr::ScanEnd::Reason;
using qmr::test::columns;
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

const ScanOption* optionNamed(const QVector<ScanOption>& options, const QString& name)
{
    for (const ScanOption& o : options)
        if (o.name == name)
            return &o;
    return nullptr;
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
        QFETCH(QStringList, conf);
        QFETCH(QStringList, names);
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

    // The pages as the system's own command-line frontend reads them with the same settings.
    void sameAsScanimage_data()
    {
        // depth 0: as the request sets it; mode and bits: the frontend's arguments.
        columns<ScanColour, int, QString, QString, QImage::Format>(
            {"colour", "depth", "mode", "bits", "format"});
        row("colour", ScanColour::Colour, 0, "Color", "8", QImage::Format_RGB32);
        row("grey", ScanColour::Grey, 0, "Gray", "8", QImage::Format_Grayscale8);
        row("line art", ScanColour::LineArt, 0, "Gray", "1", QImage::Format_Mono);
        row("grey, 16 bits", ScanColour::Grey, 16, "Gray", "16", QImage::Format_Grayscale8);
        row("colour, 16 bits", ScanColour::Colour, 16, "Color", "16", QImage::Format_RGB32);
    }
    void sameAsScanimage()
    {
        QFETCH(ScanColour, colour);
        QFETCH(int, depth);
        QFETCH(QString, mode);
        QFETCH(QString, bits);
        QFETCH(QImage::Format, format);
        test::SaneTestBackend backend({kPicture});
        const QImage expected = backend.scanimage(
            {"-d", "test:0", "--resolution", "50", "--mode", mode, "--depth", bits});
        QVERIFY(!expected.isNull());
        SaneSource source;
        const Scan scan =
            runScan(source, request(colour), depth ? Options{{"depth", depth}} : Options());
        QVERIFY(scan.ended);
        QCOMPARE(scan.end.reason, Reason::Done);
        QCOMPARE(scan.pages.size(), 1);
        const QImage& image = scan.pages.first();
        QCOMPARE(image.format(), format);
        QCOMPARE(image.size(), expected.size());
        QCOMPARE(image.dotsPerMeterX(), qRound(50 / 0.0254));
        // 16-bit samples are cut to their high byte here and rounded by the file reader.
        const int tolerance = depth == 16 ? 1 : 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QRgb a = image.pixel(x, y), b = expected.pixel(x, y);
                if (qAbs(qRed(a) - qRed(b)) > tolerance ||
                    qAbs(qGreen(a) - qGreen(b)) > tolerance ||
                    qAbs(qBlue(a) - qBlue(b)) > tolerance)
                    QFAIL(qPrintable(QStringLiteral("pixel %1,%2 differs").arg(x).arg(y)));
            }
    }

    // Three passes of one band each, lines with wasted pixels at their ends, and a device
    // that does not know the page's length give the page a single pass gives.
    void unusualFrames_data()
    {
        columns<ScanColour, QString, QVariant>({"colour", "option", "value"});
        row("three passes", ScanColour::Colour, "three-pass", QVariant(true));
        row("wasted pixels, grey", ScanColour::Grey, "ppl-loss", QVariant(7));
        row("wasted pixels, colour", ScanColour::Colour, "ppl-loss", QVariant(3));
        row("small reads", ScanColour::Colour, "read-limit", QVariant(true));
    }
    void unusualFrames()
    {
        QFETCH(ScanColour, colour);
        QFETCH(QString, option);
        QFETCH(QVariant, value);
        test::SaneTestBackend backend({kPicture});
        SaneSource source;
        const Scan plain = runScan(source, request(colour));
        QCOMPARE(plain.pages.size(), 1);
        const Scan odd = runScan(source, request(colour), {{option, value}});
        QVERIFY(odd.ended);
        QCOMPARE(odd.end.reason, Reason::Done);
        QCOMPARE(odd.pages.size(), 1);
        const QImage& a = plain.pages.first();
        const QImage& b = odd.pages.first();
        QCOMPARE(b.format(), a.format());
        if (option == QLatin1String("ppl-loss")) // shorter lines; the rest of the page the same
            QCOMPARE(b.size(), QSize(a.width() - value.toInt(), a.height()));
        else
            QCOMPARE(b, a);
    }

    void handScanner()
    {
        test::SaneTestBackend backend({kPicture});
        SaneSource source;
        const Scan scan =
            runScan(source, request(ScanColour::Grey, 100), {{"hand-scanner", QVariant(true)}});
        QCOMPARE(scan.end.reason, Reason::Done);
        QCOMPARE(scan.pages.size(), 1);
        // 11 cm wide at 100 dpi; the length is only known at the end.
        QCOMPARE(scan.pages.first().width(), qRound(110 / 25.4 * 100));
        QVERIFY(scan.pages.first().height() > 0);
        QVERIFY(scan.percents.contains(-1));
    }

    // The feeder reads every sheet until it is empty (the test device holds ten); without it,
    // one page.
    void feeder_data()
    {
        columns<bool, QString, int>({"feeder", "sourceValue", "pages"});
        row("feeder", true, "Automatic Document Feeder", 10);
        row("flatbed", false, "Flatbed", 1);
    }
    void feeder()
    {
        QFETCH(bool, feeder);
        QFETCH(QString, sourceValue);
        QFETCH(int, pages);
        test::SaneTestBackend backend({kPicture});
        SaneSource source;
        const Scan scan = runScan(source, request(ScanColour::Colour, 30, feeder));
        QVERIFY(scan.ended);
        QCOMPARE(scan.end.reason, Reason::Done);
        QCOMPARE(scan.setup.source, sourceValue);
        QCOMPARE(scan.setup.feeder, feeder);
        QCOMPARE(scan.setup.duplex, false); // the test device cannot turn sheets over
        QCOMPARE(scan.pages.size(), pages);
        for (const QImage& page : scan.pages)
            QVERIFY(!page.isNull());
    }

    void failures_data()
    {
        // failAfter: pages read before the device is told to fail with `code`; -1 at open.
        columns<QString, QString, int, QString>({"device", "code", "failAfter", "status"});
        const char* jammed = "Document feeder jammed";
        row("no such device", "test:9", "", -1, "Invalid argument");
        row("jammed at once", "test:0", "SANE_STATUS_JAMMED", 0, jammed);
        row("jammed on the third sheet", "test:0", "SANE_STATUS_JAMMED", 2, jammed);
        row("cover open", "test:0", "SANE_STATUS_COVER_OPEN", 1, "Scanner cover is open");
        row("input and output", "test:0", "SANE_STATUS_IO_ERROR", 0, "Error during device I/O");
    }
    void failures()
    {
        QFETCH(QString, device);
        QFETCH(QString, code);
        QFETCH(int, failAfter);
        QFETCH(QString, status);
        test::SaneTestBackend backend;
        SaneSource source;
        ScanRequest r = request(ScanColour::Grey, 30, true);
        r.device = device;
        const Scan scan =
            runScan(source, r, failAfter == 0 ? Options{{"read-return-value", code}} : Options(), 0,
                    [&](int read) {
                        if (read == failAfter)
                            source.setOption(QStringLiteral("read-return-value"), code);
                    });
        QVERIFY(scan.ended);
        QCOMPARE(scan.end.reason, Reason::Failed);
        QCOMPARE(scan.end.status, status);
        QCOMPARE(scan.end.atOpen, failAfter < 0);
        QCOMPARE(scan.pages.size(), qMax(0, failAfter));
        QCOMPARE(scan.end.device, device);
    }

    // Cancel stops the device in the middle of a sheet, at once.
    void cancelWhileReading()
    {
        // A sheet takes half a second to come.
        test::SaneTestBackend backend({kPicture, "read-delay true", "read-delay-duration 50000"});
        SaneSource source;
        const Scan scan = runScan(source, request(ScanColour::Colour, 75, true), {}, 3);
        QVERIFY(scan.ended);
        QCOMPARE(scan.end.reason, Reason::Cancelled);
        QCOMPARE(scan.pages.size(), 2);
        QVERIFY(scan.cancelledAt > 0);
        QVERIFY2(scan.endedAt - scan.cancelledAt < 300,
                 qPrintable(QStringLiteral("%1 ms").arg(scan.endedAt - scan.cancelledAt)));
        // The progress of the first sheet climbed to its end.
        QVERIFY(scan.percents.size() > 5);
        QCOMPARE(scan.percents.last(), 100);
    }

    // Cancel between two sheets: the next one is not read.
    void cancelBetweenSheets()
    {
        test::SaneTestBackend backend;
        SaneSource source;
        const Scan scan =
            runScan(source, request(ScanColour::Grey, 20, true), {}, 0, [&](int read) {
                if (read == 4)
                    source.cancel();
            });
        QCOMPARE(scan.end.reason, Reason::Cancelled);
        QCOMPARE(scan.pages.size(), 4);
        // The device is free again for the next scan.
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
        QFETCH(int, asked);
        QFETCH(double, taken);
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
        const ScanOption* resolution = optionNamed(options, "resolution");
        QVERIFY(resolution);
        QCOMPARE(resolution->value.toDouble(), taken);
        QCOMPARE(resolution->unit, QStringLiteral("dpi"));
        QCOMPARE(resolution->constraint, ScanOption::Constraint::Range);
        const ScanOption* mode = optionNamed(options, "mode");
        QVERIFY(mode);
        QCOMPARE(mode->strings, (QStringList{"Gray", "Color"}));
        QCOMPARE(mode->value.toString(), QStringLiteral("Gray"));
        QCOMPARE(mode->group, QStringLiteral("Scan Mode"));
        QVERIFY(optionNamed(options, "three-pass"));
        QVERIFY(!optionNamed(options, "three-pass")->active); // only in colour
        QVERIFY(!optionNamed(options, "int-constraint-range") ||
                !optionNamed(options, "int-constraint-range")->active);

        source.setOption("mode", "Color");
        QVERIFY(test::waitFor(spy.changed));
        QCOMPARE(spy.changed.first().at(1).toString(), QString());
        options = spy.options(spy.changed);
        QCOMPARE(optionNamed(options, "mode")->value.toString(), QStringLiteral("Color"));
        QVERIFY(optionNamed(options, "three-pass")->active);

        source.setOption("enable-test-options", true);
        QVERIFY(test::waitFor(spy.changed, 2));
        options = spy.options(spy.changed, 1);
        const ScanOption* ranged = optionNamed(options, "int-constraint-range");
        QVERIFY(ranged && ranged->active);
        QCOMPARE(QList<double>({ranged->minimum, ranged->maximum, ranged->quant}),
                 QList<double>({4, 192, 2}));
        const ScanOption* list = optionNamed(options, "int-constraint-word-list");
        QVERIFY(list && list->words.contains(42));
        const ScanOption* array = optionNamed(options, "int-constraint-array");
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
