#include <QFileInfo>
#include <QPointer>
#include <QScopeGuard>
#include <QTimer>
#include <QToolButton>

#include "core/settingkeys.h"
#include "filing/thumbnailcache.h"
#include "store/database.h"
#include "store/pagepaths.h"
#include "tests/app/apprun.h"
#include "tests/support/shots.h"

using namespace qmr;

namespace {

// Draws the modal window that `open` brings up to NAME.png and closes it.
bool shootModal(const std::function<void()>& open, const QString& name)
{
    bool shot = false;
    QTimer::singleShot(0, [&] {
        if (!QTest::qWaitFor([] { return QApplication::activeModalWidget() != nullptr; }))
            return;
        QWidget* w = QApplication::activeModalWidget();
        QTest::qWait(50);
        test::saveShot(w, name);
        shot = true;
        w->close();
    });
    open();
    return shot;
}

} // namespace

// Pictures of the windows of the whole program as it starts, with its own icon.
class Shots : public QObject
{
    Q_OBJECT
private slots:
    // The window that main() assembles on the sample cabinet with a long document of scanned
    // pages in both views, the viewer, Find, About and Help, in a light and a dark palette. A run
    // with QT_SCALE_FACTOR=2 draws the same at twice the size (the files end in "@2x").
    void assembledWindowInEachPalette_data()
    {
        test::columns<bool>({"dark"});
        test::row("light", false);
        test::row("dark", true);
    }
    void assembledWindowInEachPalette()
    {
        QFETCH(bool, dark);
        const QPalette before = QApplication::palette();
        const auto restore = qScopeGuard([&] { QApplication::setPalette(before); });
        if (dark)
            QApplication::setPalette(test::darkPalette());
        const QString tone = QLatin1String(dark ? "-dark" : "-light");

        test::AppRun run;
        const AppHome& home = run.home.home();
        qint32 doc = 0;
        qint32 first = 0;
        {
            test::FixtureStore store(home);
            store.fillSample();
            doc = store.document(1, QStringLiteral("Scanned letters"), QDate(2026, 5, 2));
            const QColor heads[] = {QColor(0x15, 0x65, 0xc0), QColor(0xc6, 0x28, 0x28),
                                    QColor(0x2e, 0x7d, 0x32), QColor(0x6a, 0x1b, 0x9a)};
            Database::Transaction tx(store.db());
            for (int n = 1; n <= 150; ++n) {
                const qint32 id = store.pageRow(doc, n);
                first = first ? first : id;
                const QSize size = n % 7 == 3 ? QSize(330, 255) : QSize(255, 330);
                test::scannedPage(home, id, n, size, heads[n % 4]);
                store.db().execute("UPDATE Page SET FileSize = ? WHERE PageId = ?",
                                   {QFileInfo(PagePaths(home).computedPagePath(id)).size(), id});
            }
            tx.commit();
        }
        run.home.settings().set(keys::LastNavTreeNodeKey, QString("DOC%1").arg(doc));
        QVERIFY(run.start(false));
        NavWindow* w = run.window();
        w->setGeometry(0, 0, 1000, 680);
        w->show();
        QVERIFY(QTest::qWaitForWindowExposed(w));
        QVERIFY(w->pageList()->list()->count() > 0);
        QVERIFY(
            QTest::qWaitFor([&] { return w->pageList()->thumbnails().outstanding() == 0; }, 20000));
        QTest::qWait(50);
        test::saveShot(w, "main-thumbnails" + tone);
        w->findChild<QToolButton*>("imgList")->click();
        test::saveShot(w, "main-list" + tone);

        for (const auto& [entry, name] :
             {std::pair{"mnuFileFind", "find"}, std::pair{"mnuHelpAbout", "app-about"},
              std::pair{"mnuHelpHelpTopics", "app-help"}}) {
            const QString command = QLatin1String(entry);
            QVERIFY(shootModal([&] { w->menus().run(command); }, name + tone));
        }

        w->pageList()->list()->selectPage(first);
        w->menus().run("mnuPopupPageOpen");
        QPointer<QWidget> viewer;
        QTRY_VERIFY(viewer = w->findChild<QWidget*>("frmPageView"));
        QVERIFY(QTest::qWaitForWindowExposed(viewer));
        viewer->resize(900, 640);
        QTest::qWait(100);
        test::saveShot(viewer, "viewer" + tone);
        viewer->close();
        QTRY_VERIFY(!viewer);
        w->findChild<QToolButton*>("imgThumbnail")->click();
        w->close();
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
