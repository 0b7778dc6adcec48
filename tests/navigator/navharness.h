#pragma once

#include <QListWidget>
#include <QMenu>
#include <QTest>
#include <memory>

#include "core/progress.h"
#include "core/viewsettings.h"
#include "navigator/containerlist.h"
#include "navigator/itemcommands.h"
#include "navigator/navigator.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "navigator/pagelistview.h"
#include "navigator/pagepane.h"
#include "store/schema.h"
#include "store/session.h"
#include "templates/drawertemplates.h"
#include "tests/support/fixturestore.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"

namespace qmr::test {

// A main window on a temporary home, with scripted prompter and choosers.
struct NavHarness
{
    TestHome home;
    ScriptedPrompter prompter;
    ScriptedChoosers choosers;
    SilentProgress progress;
    std::unique_ptr<Session> session;
    std::unique_ptr<ViewSettings> view;
    std::unique_ptr<DrawerTemplates> templates;
    std::unique_ptr<NavWindow> window;

    // Opens the store; call fixture() before load() to fill it.
    void openStore()
    {
        session = std::make_unique<Session>(home.home(), home.settings());
        StoreSchema::openDatabase(session->db(), home.home());
    }
    void load(bool show = true)
    {
        if (!session)
            openStore();
        templates = std::make_unique<DrawerTemplates>(home.home());
        view = std::make_unique<ViewSettings>(home.settings());
        view->read();
        window = std::make_unique<NavWindow>(
            CommandContext{*session, prompter, choosers, progress, *view}, *templates);
        window->resize(900, 600);
        window->load();
        if (show) {
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        }
    }
    // The filled store of FixtureStore::fillSample(), then the window on it.
    void loadSample(bool show = true)
    {
        FixtureStore(home.home()).fillSample();
        load(show);
    }
    NavTree* tree() const { return window->tree(); }
    Navigator& navigator() const { return window->navigator(); }
    // Makes a control the one that spoke last.
    void setSource(ContextSource source) { navigator().target().setSource(source); }

    // A left click on the node, as a person makes it.
    void click(const QString& key)
    {
        QTreeWidgetItem* item = tree()->node(key);
        QVERIFY2(item, qPrintable("no node " + key));
        for (QTreeWidgetItem* p = item->parent(); p; p = p->parent())
            p->setExpanded(true);
        tree()->scrollToItem(item);
        const QRect r = tree()->visualItemRect(item);
        // On the text's start: a long name may reach past the visible width.
        const QPoint at(qMin(r.left() + 12, tree()->viewport()->width() - 2), r.center().y());
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, at);
    }

    void clickPath(const QStringList& keys)
    {
        for (const QString& key : keys)
            click(key);
    }

    QStringList childKeys(const QString& key) const
    {
        QStringList keys;
        if (QTreeWidgetItem* item = tree()->node(key))
            for (int i = 0; i < item->childCount(); ++i)
                keys << NavTree::keyOf(item->child(i));
        return keys;
    }
    QStringList childTexts(const QString& key) const
    {
        QStringList texts;
        if (QTreeWidgetItem* item = tree()->node(key))
            for (int i = 0; i < item->childCount(); ++i)
                texts << item->child(i)->text(0);
        return texts;
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
        QString shown;
        for (const QString& name : NavMenus::levelMenus())
            if (window->menus().menu(name)->menuAction()->isVisible())
                shown += shown.isEmpty() ? name : "," + name;
        return shown;
    }
};

} // namespace qmr::test
