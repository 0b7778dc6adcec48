#pragma once

#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <memory>

#include "core/textfile.h"
#include "filing/thumbnailcache.h"
#include "navigator/containerlist.h"
#include "navigator/itemcommands.h"
#include "navigator/navigator.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "navigator/pagelistview.h"
#include "navigator/pagepane.h"
#include "store/itemstore.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "templates/drawertemplates.h"
#include "tests/support/commandharness.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/recordingprogress.h"
#include "tests/support/testrunner.h"
#include "tests/support/treepoint.h"

namespace qmr::test {

// The texts of an item's children, in the order shown.
inline QStringList itemTexts(const QTreeWidgetItem* item)
{
    QStringList texts;
    for (int i = 0; item && i < item->childCount(); ++i)
        texts << item->child(i)->text(0);
    return texts;
}

// Runs `act`, which may open a pop-up menu, and `look` on the menu once it is up, which is then
// closed; returns once the look is taken, menu or not.
inline void withPopup(const std::function<void()>& act, const std::function<void(QMenu*)>& look)
{
    bool looked = false;
    QTimer::singleShot(50, [&] {
        looked = true;
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            look(menu);
            menu->close();
        }
    });
    act();
    (void)QTest::qWaitFor([&looked] { return looked; });
}

// A main window on a temporary home, with scripted prompter and choosers.
struct NavHarness : CommandHarness<ScriptedPrompter, RecordingProgress>
{
    std::unique_ptr<DrawerTemplates> templates;
    std::unique_ptr<NavWindow> window;

    void load(bool show = true)
    {
        if (!session)
            openSession();
        templates = std::make_unique<DrawerTemplates>(home.home());
        view = std::make_unique<ViewSettings>(home.settings());
        view->read();
        window = std::make_unique<NavWindow>(context(nullptr, false), *templates);
        window->resize(900, 600);
        window->load();
        if (show) {
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        }
    }
    // The filled store of FixtureStore::fillSample(), then the window on it.
    void loadSample(bool show = true) { loadWith({}, show); }
    // The sample store with what `more` adds to it, then the window on it.
    void loadWith(const std::function<void(FixtureStore&)>& more, bool show = true)
    {
        {
            FixtureStore store(home.home());
            store.fillSample();
            if (more)
                more(store);
        }
        load(show);
    }
    NavTree* tree() const { return window->tree(); }
    Navigator& navigator() const { return window->navigator(); }
    // Makes a control the one that spoke last.
    void setSource(ContextSource source) { navigator().target().setSource(source); }
    // The view that shows the pages of the page pane.
    QAbstractItemView* pageView() const { return window->pageList()->list()->currentView(); }
    QPoint nodePoint(const QString& key) const { return test::nodePoint(*tree(), key); }
    // A left click on the node, as a person makes it.
    void click(const QString& key)
    {
        QVERIFY2(tree()->node(key), qPrintable("no node " + key));
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, nodePoint(key));
    }
    void clickPath(const QStringList& keys)
    {
        for (const QString& key : keys)
            click(key);
    }
    // Runs a command of the menus, which must be enabled.
    void trigger(const QString& action)
    {
        QAction* a = window->menus().action(action);
        QVERIFY2(a && a->isEnabled(), qPrintable(action));
        a->trigger();
    }
    // Makes the list's item of that text current; with `speak` the list spoke last.
    void selectInList(const QString& text, bool speak = false)
    {
        QListWidgetItem* item = window->list()->findItems(text, Qt::MatchExactly).value(0);
        QVERIFY2(item, qPrintable(text));
        window->list()->setCurrentItem(item);
        if (speak)
            setSource(ContextSource::List);
    }
    // Selects "list:" and an item's text in the list, else a node of the tree; returns the control.
    QAbstractItemView* select(const QString& target)
    {
        if (!target.startsWith("list:")) {
            tree()->selectNode(target);
            return tree();
        }
        selectInList(target.mid(5));
        return window->list();
    }
    // The found branch as a search would leave it for document 1.
    void addFoundBranch()
    {
        tree()->addNode("", "ROOTFOUND", "Found", QIcon());
        tree()->addNode("ROOTFOUND", "FCB1", "Home Papers", QIcon());
        tree()->addNode("FCB1", "FDW1", "Bank", QIcon());
        tree()->addNode("FDW1", "FFD1", "Checking", QIcon());
        tree()->addNode("FFD1", "FDC1", "March statement", QIcon());
    }

    QStringList childKeys(const QString& key) const
    {
        QStringList keys;
        if (QTreeWidgetItem* item = tree()->node(key))
            for (int i = 0; i < item->childCount(); ++i)
                keys << NavTree::keyOf(item->child(i));
        return keys;
    }
    QStringList childTexts(const QString& key) const { return itemTexts(tree()->node(key)); }
    // The keys below a node, nested in the order shown: "FCB1(FDW1(FFD1),FDW2)".
    QString branch(const QString& key) const
    {
        QStringList below;
        for (const QString& child : childKeys(key))
            below << branch(child);
        return below.isEmpty() ? key : key + "(" + below.join(',') + ")";
    }
    QStringList listTexts() const
    {
        QStringList texts;
        for (int i = 0; i < window->list()->count(); ++i)
            texts << window->list()->item(i)->text();
        return texts;
    }
    // The texts of lvwThumb's items, in the order shown.
    QStringList pageTexts() const
    {
        QStringList texts;
        const PageListView* pages = window->pageList()->list();
        for (int i = 0; i < pages->count(); ++i)
            texts << pages->textAt(i);
        return texts;
    }
    QString visibleLevelMenu() const
    {
        QStringList shown;
        for (const QString& name : NavMenus::levelMenus())
            if (window->menus().menu(name)->menuAction()->isVisible())
                shown << name;
        return shown.join(',');
    }
};

// Makes a new page row of the document a shortcut to `target` (none when empty).
inline qint32 shortcutPage(FixtureStore& store, qint32 doc, int number, const QString& target)
{
    const qint32 id = store.pageRow(doc, number);
    store.db().execute("UPDATE Page SET ShortcutYN = 'Y', Filename = ? WHERE PageId = ?",
                       {target.isEmpty() ? QVariant() : QVariant(target), id});
    return id;
}

// Waits until the pane has made every thumbnail it asked for.
inline bool thumbnailsDone(NavHarness& h)
{
    return QTest::qWaitFor([&] { return h.window->pageList()->thumbnails().outstanding() == 0; },
                           10000);
}

// The window on the sample store, shown, after clicks on the given nodes.
struct SampleWindow : NavHarness
{
    explicit SampleWindow(const QStringList& clicks = {})
    {
        loadSample();
        clickPath(clicks);
    }
};

} // namespace qmr::test

// The prompter saw every text it expected, in order, and nothing else.
#define QMR_VERIFY_PROMPTS(h) QVERIFY2((h).prompter.verify(), qPrintable((h).prompter.report()))
