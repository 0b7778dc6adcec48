#include <QPushButton>
#include <QTest>

#include "scanharness.h"
#include "tests/navigator/navharness.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

Q_DECLARE_METATYPE(qmr::Level)

namespace {

// The store of ScanFixture in a main window; pages are saved as soon as they are scanned and
// the kind of scan last chosen is `kind`.
struct WindowStore
{
    SaneTestBackend backend{QStringList{kPicture}};
    NavHarness h;
    ScanFixture f{h.home.home()};

    explicit WindowStore(const QString& kind)
    {
        Settings& s = h.home.settings();
        s.set(keys::SetupScanSettings, QStringLiteral("True"));
        s.setMode(keys::AfterScan, AfterScanMode::Return);
        s.set(keys::ScanSource, QStringLiteral("test:0"));
        s.set(keys::ImageType, kind);
        h.load();
    }
    // Clicks down the tree to the node of that level.
    void clickDownTo(Level level)
    {
        const std::pair<Level, qint32> path[] = {{Level::Cabinet, f.cabinet},
                                                 {Level::Drawer, f.drawer},
                                                 {Level::Folder, f.kept},
                                                 {Level::Document, f.five}};
        for (const auto& [l, id] : path) {
            h.click(NodeKey::of(l, id).text());
            if (l == level)
                return;
        }
    }
    QVector<PageRow> pagesOfFive() const { return h.session->pages().pages(f.five); }
};

} // namespace

class TestScanCommands : public QObject
{
    Q_OBJECT
private slots:
    // The buttons write the kind first, then want a folder or a document in the tree. Scan New
    // Page of a document, from the tree or from the list, keeps the kind as it is. (What a
    // scan says when no scanner is set: TestScanFlow::stops.)
    void commands_data()
    {
        // command: a button, or "tree" / "list" for Scan New Page from there.
        columns<Level, QString, QString, QString, QString, int>(
            {"level", "command", "message", "before", "kind", "pages"});
        const char* target = "Please click on a folder or document to scan to.";
        row("cabinet", Level::Cabinet, "cmdScanDoc", target, "camera", "document", 5);
        row("drawer, picture", Level::Drawer, "cmdScanPic", target, "camera", "picture", 5);
        row("document, picture", Level::Document, "cmdScanPic", "", "camera", "picture", 6);
        row("new page, tree", Level::Document, "tree", "", "picture", "picture", 6);
        row("new page, list", Level::Folder, "list", "", "picture", "picture", 6);
    }
    void commands()
    {
        const auto [level, command, message, before, pages] =
            fetch<Level, QString, QString, QString, int>("level", "command", "message", "before",
                                                         "pages");
        WindowStore w(before);
        w.clickDownTo(level);
        if (!message.isEmpty())
            w.h.prompter.expect(message);
        if (command.startsWith(QLatin1String("cmd"))) {
            auto* b = w.h.window->findChild<QPushButton*>(command);
            QVERIFY(b && b->isEnabled());
            QTest::mouseClick(b, Qt::LeftButton);
        } else {
            const bool fromList = command == QLatin1String("list");
            if (fromList) {
                QCOMPARE(w.h.listTexts().size(), 1);
                w.h.window->list()->setCurrentRow(0);
            }
            w.h.setSource(fromList ? ContextSource::List : ContextSource::Tree);
            w.h.window->menus().run(QStringLiteral("mnuPopupDocumentScanPage"));
        }
        QVERIFY2(w.h.prompter.verify(), qPrintable(w.h.prompter.report()));
        QTEST(w.h.home.settings().get(keys::ImageType), "kind");
        const QVector<PageRow> rows = w.pagesOfFive();
        QCOMPARE(rows.size(), pages);
        QCOMPARE(rows.last().pageNumber, pages);
        QVERIFY(QFile::exists(w.h.session->paths().pagePath(rows.last().id, rows.last().filename)));
    }
};

QMR_TEST(TestScanCommands)
#include "testscancommands.moc"
