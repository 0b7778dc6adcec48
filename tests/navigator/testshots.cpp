#include <QIcon>
#include <QTabWidget>
#include <QToolButton>

#include "dialogs/itemdialog.h"
#include "dialogs/pagepropertiesdialog.h"
#include "dialogs/passworddialog.h"
#include "navharness.h"
#include "templates/samplecabinets.h"
#include "templates/sampledialog.h"
#include "templates/templateeditor.h"
#include "tests/support/shots.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// Shows a window and draws it once it is up.
void shoot(QWidget& window, const char* name)
{
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    saveShot(&window, name);
}

// Draws the main window after clicks on the given nodes.
void shootAt(NavHarness& h, const QStringList& clicks, const char* name)
{
    h.clickPath(clicks);
    saveShot(h.window.get(), name);
}

} // namespace

// Renders windows on a filled store to PNG files, so that anyone can look at them without a
// display. The files go to $QMR_SHOTS_DIR (default: shots/ in the working directory).
class Shots : public QObject
{
    Q_OBJECT
private slots:
    void mainWindow()
    {
        NavHarness h;
        h.loadWith([](FixtureStore& store) {
            const qint32 cab = store.cabinet("Shoe Box 1998-2004");
            for (const char* d : {"Receipts", "Warranties", "Medical", "Car", "School"}) {
                const qint32 drw = store.drawer(cab, d);
                for (int f = 1; f <= 3; ++f)
                    store.folder(drw, QString("%1 folder %2").arg(d).arg(f));
            }
        });
        h.window->resize(1000, 640);
        // A document's pages and its menu are drawn by pagePane and popupMenus.
        shootAt(h, {"ROOT"}, "navigator-root");
        shootAt(h, {"CAB1", "DRW1"}, "navigator-drawer");
        h.tree()->expandAll();
        saveShot(h.window.get(), "navigator-expanded");
    }

    void pagePane()
    {
        NavHarness h;
        FixtureStore store(h.home.home());
        store.fillSample();
        const qint32 folder = 1;
        for (const char* name : {"April statement", "May statement", "Loan agreement",
                                 "Card receipts 2025", "Letter from the bank"})
            store.document(folder, name);
        const qint32 doc = store.document(folder, "Scanned mail", QDate(2026, 5, 2));
        const QColor heads[] = {QColor(0x15, 0x65, 0xc0), QColor(0xc6, 0x28, 0x28),
                                QColor(0x2e, 0x7d, 0x32), QColor(0x6a, 0x1b, 0x9a)};
        for (int n = 1; n <= 14; ++n) {
            const qint32 id = store.pageRow(doc, n);
            if (n == 6)
                continue; // its file has gone: a blank tile
            const QSize size = n % 5 == 2 ? QSize(1100, 850) : QSize(850, 1100);
            scannedPage(h.home.home(), id, n, size, heads[n % 4]);
            store.db().execute(
                "UPDATE Page SET FileSize = ? WHERE PageId = ?",
                {QFileInfo(PagePaths(h.home.home()).computedPagePath(id)).size(), id});
        }
        QVERIFY(h.home.writeFile("invoice.pdf", "%PDF-1.4"));
        shortcutPage(store, doc, 15, h.home.file("invoice.pdf"));
        h.home.settings().set(keys::DisplayCount, "16");
        h.load();
        h.window->resize(1000, 640);
        shootAt(h, {"CAB1", "DRW1", "FLD1"}, "navigator-container-list");
        h.click(QString("DOC%1").arg(doc));
        QVERIFY(thumbnailsDone(h));
        QCoreApplication::processEvents();
        saveShot(h.window.get(), "pane-thumbnails");
        h.window->findChild<QToolButton*>("imgList")->click();
        saveShot(h.window.get(), "pane-list");
        h.window->findChild<QToolButton*>("imgThumbnail")->click();
        // Empty places say how they fill.
        shootAt(h, {"DOC2"}, "pane-empty-document");
        shootAt(h, {"CAB1", "DRW1", "FLD2"}, "navigator-empty-folder");
    }

    void itemDialogs()
    {
        NavHarness h;
        h.loadSample(false);
        const CommandContext services = h.window->navigator().context();
        // The level, the item (-1: Add), the tab and the file's name.
        for (const auto& [level, id, tab, name] :
             {std::tuple{Level::Cabinet, 1, 0, "dialog-cabinet"},
              std::tuple{Level::Cabinet, 1, 1, "dialog-cabinet-storage"},
              std::tuple{Level::Cabinet, 1, 2, "dialog-cabinet-statistics"},
              std::tuple{Level::Cabinet, -1, 0, "dialog-cabinet-add"},
              std::tuple{Level::Drawer, 1, 1, "dialog-drawer-statistics"},
              std::tuple{Level::Folder, 3, 0, "dialog-folder"},
              std::tuple{Level::Folder, 1, 1, "dialog-folder-statistics"},
              std::tuple{Level::Document, 1, 0, "dialog-document"},
              std::tuple{Level::Document, 1, 1, "dialog-document-statistics"}}) {
            ItemDialog dialog(level, services);
            if (id < 0)
                dialog.setAdd(-1);
            else
                QVERIFY(dialog.setEdit(id));
            dialog.findChild<QTabWidget*>("tabMain")->setCurrentIndex(tab);
            shoot(dialog, name);
        }
        ItemDialog drawer(Level::Drawer, services);
        drawer.setAdd(1);
        drawer.populateTemplates({"Car", "House"}, {});
        shoot(drawer, "dialog-drawer-add-template");
        ItemDialog fresh(Level::Document, services, nullptr, true);
        shoot(fresh, "dialog-document-new");
        PagePropertiesDialog page(h.session->db());
        page.populate(1);
        shoot(page, "dialog-page-properties");

        QVERIFY(TextFile::writeLines(h.home.file("Drawer.txt"),
                                     {"", "DRW=Car", "FLD=Repairs", "DOC=Invoice", "FLD=Insurance",
                                      "", "DRW=House", "FLD=Roof"}));
        h.templates->loadDrawerTemplates();
        TemplateEditor editor(*h.templates, h.prompter);
        editor.tree()->expandAll();
        shoot(editor, "dialog-drawer-templates");

        SampleCabinets samples(h.home.home(), h.session->db(), nullptr);
        samples.ensureFile();
        SampleDialog sample(samples, h.prompter, h.choosers);
        shoot(sample, "dialog-sample-cabinet");
        PasswordDialog password;
        shoot(password, "dialog-password");
    }

    void popupMenus()
    {
        // The entries' icons come from the desktop's theme; the offscreen platform names none.
        const QString theme = QIcon::themeName();
        const QStringList paths = QIcon::themeSearchPaths();
        QIcon::setThemeSearchPaths(paths + QStringList{QStringLiteral("/usr/share/icons")});
        QIcon::setThemeName(QStringLiteral("Adwaita"));
        SampleWindow h;
        // Each menu is drawn once it is up, then closed.
        auto shoot = [](const QString& name, const std::function<void()>& open) {
            withPopup(open, [name](QMenu* menu) { saveShot(menu, name); });
        };
        h.clickPath({"CAB1", "DRW1"});
        h.window->list()->setCurrentRow(0);
        h.window->list()->setFocus();
        shoot("popup-list-folder", [&] { QTest::keyClick(h.window->list(), Qt::Key_Menu); });
        h.clickPath({"FLD1", "DOC1"});
        h.tree()->setFocus();
        shoot("popup-tree-document",
              [&] { QTest::keyClick(h.tree(), Qt::Key_F10, Qt::ShiftModifier); });
        QAbstractItemView* pages = h.pageView();
        pages->setFocus();
        pages->setCurrentIndex(pages->model()->index(0, 0));
        shoot("popup-page", [&] { QTest::keyClick(pages, Qt::Key_Menu); });
        // A label being edited in the tree.
        h.tree()->selectNode("DRW2");
        h.tree()->setFocus();
        QTest::keyClick(h.tree(), Qt::Key_F2);
        saveShot(h.window.get(), "navigator-rename");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QIcon::setThemeName(theme);
        QIcon::setThemeSearchPaths(paths);
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
