#pragma once

#include <QCoreApplication>
#include <QStringList>

#include <memory>

#include "core/apphome.h"
#include "core/runstate.h"

namespace qmr {

class AccessibleNames;
class Choosers;
struct CommandContext;
class DrawerTemplates;
class HomeLock;
class HomeSweep;
class MailPageNotifier;
class PageNotifiers;
class NavWindow;
class ProgressWindow;
class Prompter;
class Session;
class Settings;
class SplashWindow;
class TextReading;
class ViewSettings;

// The start of a run, in its fixed order: prerequisite test, the home taken for this run
// (refused when another run holds it), store opened (created and upgraded) before anything
// is on screen, settings read, templates loaded, main window loaded, find defaults reset,
// main window shown.
class Startup
{
    Q_DECLARE_TR_FUNCTIONS(qmr::Startup)

public:
    // `textWorker`: the program and arguments that start the text reading worker; none, and
    // the pages' text is not read in this run.
    Startup(AppHome home, Settings& settings, Prompter& prompter, Choosers& choosers,
            QStringList textWorker = {});
    ~Startup();

    // False when the run must end: the prerequisite failed, another run holds the home, or
    // the store could not be opened (the user has been told).
    bool start(bool showWindow = true);

    // True when the SQLite library is recent enough; otherwise tells the user and is false.
    static bool checkDataAccess(Prompter& prompter, int runtimeVersion);

    Session& session() { return *m_session; }
    RunState& state() { return m_state; }
    NavWindow* window() { return m_window.get(); }
    SplashWindow* splash() { return m_splash.get(); }
    ProgressWindow* progress() { return m_progress.get(); }
    DrawerTemplates& templates() { return *m_templates; }
    ViewSettings& viewSettings() { return *m_view; }
    // The tidying of the page files that starts once the window is up.
    HomeSweep* sweep() { return m_sweep.get(); }
    // The reading of the pages' text; null when it is not read in this run.
    TextReading* textReading() { return m_reading.get(); }

private:
    void startTextReading();

    AppHome m_home;
    Settings& m_settings;
    Prompter& m_prompter;
    Choosers& m_choosers;
    // Released last, once the store is closed.
    std::unique_ptr<HomeLock> m_lock;
    std::unique_ptr<AccessibleNames> m_names;
    std::unique_ptr<Session> m_session;
    RunState m_state;
    std::unique_ptr<ViewSettings> m_view;
    std::unique_ptr<DrawerTemplates> m_templates;
    std::unique_ptr<SplashWindow> m_splash;
    std::unique_ptr<ProgressWindow> m_progress;
    // The services every command works with, held for the run: the mail notifier keeps it.
    std::unique_ptr<CommandContext> m_base;
    std::unique_ptr<MailPageNotifier> m_notifier;
    std::unique_ptr<PageNotifiers> m_notifiers;
    QStringList m_textWorker;
    // Before the window: its reading line goes first.
    std::unique_ptr<TextReading> m_reading;
    std::unique_ptr<NavWindow> m_window;
    std::unique_ptr<HomeSweep> m_sweep;
};

} // namespace qmr
