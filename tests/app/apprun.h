#pragma once

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidgetItem>
#include <memory>

#include "app/startup.h"
#include "navigator/navmenus.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "navigator/pagelistview.h"
#include "navigator/pagepane.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"
#include "tests/support/treepoint.h"

namespace qmr::test {

// Starts the program itself with a settings directory of its own and no home from outside:
// offscreen, or with no display at all as a batch run on a server has.
inline bool startProgram(QProcess& process, const QString& configDir, const QStringList& arguments,
                         bool offscreen = true)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("QUILLMERE_HOME");
    if (offscreen)
        env.insert("QT_QPA_PLATFORM", "offscreen");
    else
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            env.remove(name);
    env.insert("XDG_CONFIG_HOME", configDir);
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(QMR_APP_PATH), arguments);
    return process.waitForStarted();
}

// A run of the program on a temporary home, started as main() starts it.
struct AppRun
{
    TestHome home;
    ScriptedPrompter prompter;
    ScriptedChoosers choosers;
    std::unique_ptr<Startup> startup;

    // One more run on this home, answered by this run's prompter (and choosers unless given).
    std::unique_ptr<Startup> make(Choosers* other = nullptr)
    {
        return std::make_unique<Startup>(home.home(), home.settings(), prompter,
                                         other ? *other : choosers);
    }
    // Starts this run; a window that shows is waited for until it is exposed and active.
    bool start(bool show = true, Choosers* other = nullptr)
    {
        startup = make(other);
        if (!startup->start(show))
            return false;
        if (!show)
            return true;
        QApplication::setActiveWindow(window());
        return QTest::qWaitForWindowExposed(window()) && QTest::qWaitForWindowActive(window());
    }
    NavWindow* window() const { return startup->window(); }
    Session& session() const { return startup->session(); }
    RunState& state() const { return startup->state(); }
    NavTree* tree() const { return window()->tree(); }
    PageListView* pages() const { return window()->pageList()->list(); }
    QAbstractItemView* pageView() const { return pages()->currentView(); }
    QAction* action(const char* name) const { return window()->menus().action(name); }
    QPoint nodePoint(const QString& key) const { return test::nodePoint(*tree(), key); }
    // Left clicks on nodes, as a person makes them, each node in view after the one before.
    void click(const QStringList& keys) const
    {
        for (const QString& key : keys)
            QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, nodePoint(key));
    }
};

} // namespace qmr::test
