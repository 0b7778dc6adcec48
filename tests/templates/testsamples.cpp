#include <QFile>
#include <QTest>

#include "core/navigatorcallbacks.h"
#include "core/textfile.h"
#include "store/itemstore.h"
#include "store/storeerror.h"
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

} // namespace

class TestSamples : public QObject
{
    Q_OBJECT
private slots:
    void defaultIsWrittenWhenMissing()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        SampleCabinets samples(home.home(), store.db(), nullptr);
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
        test::TestHome home;
        test::FixtureStore store(home.home());
        NavRecorder nav;
        SampleCabinets samples(home.home(), store.db(), &nav);
        samples.ensureFile();
        const qint32 id = samples.createSampleCabinet("Generic File Cabinet");
        ItemStore items(store.db());
        QCOMPARE(items.count(Level::Cabinet), 1);
        QCOMPARE(items.count(Level::Drawer), 6);
        QCOMPARE(items.count(Level::Folder), 15);
        QCOMPARE(items.count(Level::Document), 0);
        QCOMPARE(items.item(Level::Cabinet, id).name, QStringLiteral("Generic File Cabinet"));
        QCOMPARE(nav.calls.first(), "CAB" + NavRecorder::key(id, "Generic File Cabinet"));
        QCOMPARE(nav.calls.last(), QString("SHOWCAB%1").arg(id));
        QCOMPARE(nav.calls.size(), 1 + 6 + 15 + 1);
        // The new cabinet has the stored form of no password: it is open.
        QCOMPARE(store.db().scalar("SELECT Password FROM Cabinet").toString(), QString());
    }

    void twoSamplesAndOddLines()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        NavRecorder nav;
        SampleCabinets samples(home.home(), store.db(), &nav);
        writeFile(samples.filePath(), {
                                          "CAB=First",
                                          "  DRW = One",
                                          "DOC = lost, no folder yet",
                                          "    FLD=A",
                                          "      DOC = Deed = copy",
                                          "  DRW = Two",
                                          "      DOC = lost too, the drawer cleared the folder",
                                          "bogus line",
                                          "drw = lower case is no drawer",
                                          "CAB = Second",
                                          "  DRW = Three",
                                      });
        QCOMPARE(samples.sampleNames(), (QStringList{"First", "Second"}));
        samples.createSampleCabinet("first"); // the name matches without regard to case
        ItemStore items(store.db());
        QCOMPARE(items.count(Level::Drawer), 2);
        QCOMPARE(items.count(Level::Folder), 1);
        QCOMPARE(items.count(Level::Document), 1);
        QCOMPARE(store.db().scalar("SELECT Name FROM Document").toString(),
                 QStringLiteral("Deed = copy"));
        samples.createSampleCabinet("Second");
        QCOMPARE(items.count(Level::Drawer), 3);
    }

    void overLongNameInTheFileLeavesNothingBehind()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        SampleCabinets samples(home.home(), store.db(), nullptr);
        writeFile(samples.filePath(), {"CAB=Big", " DRW=Fine", "  FLD=" + QString(81, 'x')});
        QVERIFY_THROWS_EXCEPTION(StoreError, samples.createSampleCabinet("Big"));
        ItemStore items(store.db());
        QCOMPARE(items.count(Level::Cabinet), 0);
        QCOMPARE(items.count(Level::Drawer), 0);
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
