#include <QPushButton>
#include <QTest>

#include "sanetestbackend.h"
#include "tests/navigator/navharness.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

const QString kPicture = QStringLiteral("test-picture \"Color pattern\"");

// Cabinet "Home", drawer "Papers", folder "Kept" with document "Five" (pages 1 to 5), in a
// main window; pages are saved as soon as they are scanned.
struct WindowStore
{
    NavHarness h;
    qint32 cabinet = -1, drawer = -1, kept = -1, five = -1;

    explicit WindowStore(bool scannerSet)
    {
        {
            FixtureStore store(h.home.home());
            cabinet = store.cabinet("Home");
            drawer = store.drawer(cabinet, "Papers");
            kept = store.folder(drawer, "Kept");
            five = store.document(kept, "Five");
            for (int n = 1; n <= 5; ++n)
                store.page(five, n, QSize(60, 80));
        }
        Settings& s = h.home.settings();
        s.set(keys::SetupScanSettings, QStringLiteral("True"));
        s.setMode(keys::AfterScan, AfterScanMode::Return);
        if (scannerSet)
            s.set(keys::ScanSource, QStringLiteral("test:0"));
    }
    // Clicks down the tree to the node of that level.
    void clickDownTo(Level level)
    {
        const QList<QPair<Level, qint32>> path{{Level::Cabinet, cabinet},
                                               {Level::Drawer, drawer},
                                               {Level::Folder, kept},
                                               {Level::Document, five}};
        for (const auto& [l, id] : path) {
            h.click(NodeKey::of(l, id).text());
            if (l == level)
                return;
        }
    }
    int pagesOfFive() const { return h.session->pages().count(five); }
};

} // namespace

class TestScanCommands : public QObject
{
    Q_OBJECT
private slots:
    // The buttons write the kind first, then want a folder or a document in the tree.
    void buttons_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("button");
        QTest::addColumn<bool>("scannerSet");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("pages");
        const QString target = "Please click on a folder or document to scan to.";
        QTest::newRow("cabinet") << int(Level::Cabinet) << "cmdScanDoc" << true << target
                                 << "document" << 5;
        QTest::newRow("drawer, picture")
            << int(Level::Drawer) << "cmdScanPic" << true << target << "picture" << 5;
        QTest::newRow("folder, no scanner")
            << int(Level::Folder) << "cmdScanDoc" << false << "A scanner could not be detected."
            << "document" << 5;
        QTest::newRow("document, picture") << int(Level::Document) << "cmdScanPic" << true << ""
                                           << "picture" << 6;
    }
    void buttons()
    {
        QFETCH(int, level);
        QFETCH(QString, button);
        QFETCH(bool, scannerSet);
        QFETCH(QString, message);
        QFETCH(QString, kind);
        QFETCH(int, pages);
        SaneTestBackend backend({kPicture});
        WindowStore w(scannerSet);
        w.h.home.settings().set(keys::ImageType, QStringLiteral("camera"));
        w.h.load();
        w.clickDownTo(Level(level));
        if (!message.isEmpty())
            w.h.prompter.expect(message);
        auto* b = w.h.window->findChild<QPushButton*>(button);
        QVERIFY(b && b->isEnabled());
        QTest::mouseClick(b, Qt::LeftButton);
        QVERIFY2(w.h.prompter.verify(), qPrintable(w.h.prompter.report()));
        QCOMPARE(w.h.home.settings().get(keys::ImageType), kind);
        QCOMPARE(w.pagesOfFive(), pages);
    }

    // Scan New Page of a document, from the tree or from the list, keeps the kind as it is.
    void scanNewPage_data()
    {
        QTest::addColumn<bool>("fromList");
        QTest::newRow("tree") << false;
        QTest::newRow("list") << true;
    }
    void scanNewPage()
    {
        QFETCH(bool, fromList);
        SaneTestBackend backend({kPicture});
        WindowStore w(true);
        w.h.home.settings().set(keys::ImageType, QStringLiteral("picture"));
        w.h.load();
        if (fromList) {
            w.clickDownTo(Level::Folder);
            QCOMPARE(w.h.listTexts().size(), 1);
            w.h.window->list()->setCurrentRow(0);
            w.h.setSource(ContextSource::List);
        } else {
            w.clickDownTo(Level::Document);
            w.h.setSource(ContextSource::Tree);
        }
        w.h.window->menus().run(QStringLiteral("mnuPopupDocumentScanPage"));
        QVERIFY2(w.h.prompter.verify(), qPrintable(w.h.prompter.report()));
        QCOMPARE(w.h.home.settings().get(keys::ImageType), QStringLiteral("picture"));
        QCOMPARE(w.pagesOfFive(), 6);
        const QVector<PageRow> rows = w.h.session->pages().pages(w.five);
        QCOMPARE(rows.last().pageNumber, 6);
        QVERIFY(QFile::exists(w.h.session->paths().pagePath(rows.last().id, rows.last().filename)));
    }
};

QMR_TEST(TestScanCommands)
#include "testscancommands.moc"
