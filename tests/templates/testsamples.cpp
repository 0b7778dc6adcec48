#include <QFile>
#include <QTest>

#include "core/navigatorcallbacks.h"
#include "core/textfile.h"
#include "store/itemstore.h"
#include "templates/drawertemplates.h"
#include "templates/outlinefile.h"
#include "templates/samplecabinets.h"
#include "tests/support/fixturestore.h"
#include "tests/support/navrecorder.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

using test::NavRecorder;

void writeFile(const QString& path, const QStringList& lines)
{
    QVERIFY(TextFile::writeLines(path, lines));
}

// A sample file on an empty store; what it makes is told to the recorder.
struct SampleBench
{
    test::TestHome home;
    test::FixtureStore store{home.home()};
    NavRecorder nav;
    SampleCabinets samples{home.home(), store.db(), &nav};
    ItemStore items{store.db()};

    explicit SampleBench(const QStringList& lines = {})
    {
        if (!lines.isEmpty())
            writeFile(samples.filePath(), lines);
    }
    // Cabinets, drawers, folders and documents in the store.
    QList<int> counts()
    {
        return {items.count(Level::Cabinet), items.count(Level::Drawer), items.count(Level::Folder),
                items.count(Level::Document)};
    }
};

} // namespace

class TestSamples : public QObject
{
    Q_OBJECT
private slots:
    void defaultIsWrittenWhenMissing()
    {
        SampleBench b;
        SampleCabinets& samples = b.samples;
        QVERIFY(!QFile::exists(samples.filePath()));
        QVERIFY(samples.ensureFile());
        const QStringList lines = TextFile::readLines(samples.filePath()).value_or(QStringList());
        QCOMPARE(lines, SampleCabinets::defaultText());
        QCOMPARE(lines.size(), 22);
        QCOMPARE(lines.at(0), QStringLiteral("CAB = Generic File Cabinet"));
        QCOMPARE(lines.at(18), QStringLiteral("  FLD = Bank Acocunt"));
        QCOMPARE(samples.sampleNames(), QStringList{"Generic File Cabinet"});
        // A user's own file is never overwritten.
        writeFile(samples.filePath(), {"CAB=Mine"});
        QVERIFY(samples.ensureFile());
        QCOMPARE(samples.sampleNames(), QStringList{"Mine"});
    }

    void defaultSampleCreatesItsOutline()
    {
        SampleBench b;
        b.samples.ensureFile();
        const qint32 id = b.samples.createSampleCabinet("Generic File Cabinet");
        QCOMPARE(b.counts(), (QList<int>{1, 6, 15, 0}));
        QCOMPARE(b.items.item(Level::Cabinet, id).name, QStringLiteral("Generic File Cabinet"));
        QCOMPARE(b.nav.calls.first(), "CAB" + NavRecorder::key(id, "Generic File Cabinet"));
        QCOMPARE(b.nav.calls.last(), QString("SHOWCAB%1").arg(id));
        QCOMPARE(b.nav.calls.size(), 1 + 6 + 15 + 1);
        // The new cabinet has the stored form of no password: it is open.
        QCOMPARE(b.store.db().scalar("SELECT Password FROM Cabinet").toString(), QString());
    }

    void twoSamplesAndOddLines()
    {
        SampleBench b({"CAB=First", "  DRW = One", "DOC = lost, no folder yet", "    FLD=A",
                       "      DOC = Deed = copy", "  DRW = Two",
                       "      DOC = lost too, the drawer cleared the folder", "bogus line",
                       "drw = lower case is no drawer", "CAB = Second", "  DRW = Three"});
        QCOMPARE(b.samples.sampleNames(), (QStringList{"First", "Second"}));
        b.samples.createSampleCabinet("first"); // the name matches without regard to case
        QCOMPARE(b.counts(), (QList<int>{1, 2, 1, 1}));
        QCOMPARE(b.store.db().scalar("SELECT Name FROM Document").toString(),
                 QStringLiteral("Deed = copy"));
        b.samples.createSampleCabinet("Second");
        QCOMPARE(b.counts(), (QList<int>{2, 3, 1, 1}));
    }

    void unusableLinesAreReported_data()
    {
        QTest::addColumn<QStringList>("file");
        QTest::addColumn<QList<int>>("made"); // cabinets, drawers, folders, documents
        QTest::addColumn<QStringList>("unused");
        const QString tooLong(81, 'x');
        QTest::newRow("name too long") << QStringList{"CAB=Big",    " DRW=Fine", "  FLD=" + tooLong,
                                                      "  FLD=Kept", "CAB=Other", " DRW=" + tooLong}
                                       << QList<int>{1, 1, 1, 0}
                                       << QStringList{"3: The name is too long: a folder's name "
                                                      "can have at most 80 characters."};
        QTest::newRow("what stands below a line not used")
            << QStringList{"CAB=Big",   " DRW=" + tooLong, "  FLD=Lost",     "   DOC=Lost too",
                           " DRW=Next", "  FLD=Kept",      "   DOC=Kept too"}
            << QList<int>{1, 1, 1, 1}
            << QStringList{"2: The name is too long: a drawer's name can have at most 80 "
                           "characters.",
                           "3: Its drawer on line 2 was not made.",
                           "4: Its folder on line 3 was not made."};
        QTest::newRow("no item above")
            << QStringList{"CAB=Big", "  FLD=No drawer yet", "   DOC=Nor a folder", " DRW=D",
                           "   DOC=The drawer cleared the folder"}
            << QList<int>{1, 1, 0, 0}
            << QStringList{"2: A folder needs a drawer line above it.",
                           "3: Its folder on line 2 was not made.",
                           "5: A document needs a folder line above "
                           "it."};
        QTest::newRow("no name, unknown keys")
            << QStringList{"CAB=Big",     " DRW =",   "  FLD=Lost", " drw = lower case",
                           " FDL = Typo", "a note",   "",           " PAG = Page",
                           " DRW",        " DRW=Kept"}
            << QList<int>{1, 1, 0, 0}
            << QStringList{"2: It has no name.",
                           "3: Its drawer on line 2 was not made.",
                           "4: It does not begin with DRW, FLD or DOC.",
                           "5: It does not begin with DRW, FLD or DOC.",
                           "8: It does not begin with DRW, FLD or DOC.",
                           "9: It has no name."};
        QStringList many{"CAB=Big"};
        QStringList unused;
        for (int i = 2; i <= 18; ++i) {
            many << "  FLD=Orphan";
            unused << QString::number(i) + ": A folder needs a drawer line above it.";
        }
        QTest::newRow("many lines are counted") << many << QList<int>{1, 0, 0, 0} << unused;
    }
    void unusableLinesAreReported()
    {
        QFETCH(QStringList, file);
        QFETCH(QList<int>, made);
        QFETCH(QStringList, unused);
        SampleBench b(file);
        SampleCabinets& samples = b.samples;
        const qint32 id = samples.createSampleCabinet("Big");
        // The cabinet is made with every line that could be used, and shown.
        QCOMPARE(b.counts(), made);
        QCOMPARE(b.nav.calls.last(), QString("SHOWCAB%1").arg(id));
        QStringList seen;
        for (const UnusedLine& line : samples.unusedLines())
            seen << QString::number(line.number) + ": " + line.reason;
        QCOMPARE(seen, unused);
        // One message names the file and each line, up to a count.
        const QStringList message = samples.unusedLinesMessage("Big").split('\n');
        QCOMPARE(message.first(), "Some lines of " + samples.filePath() +
                                      " could not be used; the sample cabinet 'Big' was made "
                                      "without them.");
        const int listed = qMin(int(unused.size()), int(SampleCabinets::kListedLines));
        for (int i = 0; i < listed; ++i)
            QCOMPARE(message.at(i + 1), "Sample.txt, line " + unused.at(i));
        QCOMPARE(message.size(), 1 + listed + (unused.size() > listed ? 1 : 0));
        if (unused.size() > listed)
            QCOMPARE(message.last(), QStringLiteral("... and 2 more lines."));
    }

    void templateNames()
    {
        test::TestHome home;
        DrawerTemplates templates(home.home());
        templates.loadDrawerTemplates();
        QVERIFY(templates.names().isEmpty()); // no file, no templates, no message
        writeFile(templates.filePath(), {
                                            "",
                                            "DRW=Car",
                                            "FLD=Repairs",
                                            "DOC=Invoice",
                                            "",
                                            "DRW = Spaced", // applied, but not listed
                                            "drw=lower",    // shown by the editor only
                                            "DRW=Key=Value",
                                            " DRW=Indented",
                                        });
        templates.loadDrawerTemplates();
        QCOMPARE(templates.names(), (QStringList{"Car", "Key=Value"}));
    }
};

QMR_TEST(TestSamples)
#include "testsamples.moc"
