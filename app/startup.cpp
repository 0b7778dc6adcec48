#include "app/startup.h"

#include <QApplication>
#include <QDateTime>
#include <QStatusBar>
#include <QTimer>
#include <QTreeWidget>

#include "app/accessiblenames.h"
#include "app/appicon.h"
#include "app/progresswindow.h"
#include "app/splashwindow.h"
#include "core/homelock.h"
#include "core/pagenotifiers.h"
#include "core/prompter.h"
#include "core/settings.h"
#include "core/viewsettings.h"
#include "help/helplocator.h"
#include "mail/mailpagenotifier.h"
#include "navigator/navwindow.h"
#include "navigator/pagepane.h"
#include "store/commandcontext.h"
#include "store/homesweep.h"
#include "store/schema.h"
#include "store/session.h"
#include "store/storeerror.h"
#include "templates/drawertemplates.h"
#include "text/readingline.h"
#include "text/textcommands.h"
#include "text/textreading.h"
#include "text/textrecognizer.h"
#include "viewer/editrescue.h"

namespace qmr {

Startup::Startup(AppHome home, Settings& settings, Prompter& prompter, Choosers& choosers,
                 QStringList textWorker)
    : m_home(std::move(home)), m_settings(settings), m_prompter(prompter), m_choosers(choosers),
      m_textWorker(std::move(textWorker))
{
}

Startup::~Startup() = default;

bool Startup::checkDataAccess(Prompter& prompter, int runtimeVersion)
{
    if (runtimeVersion >= StoreSchema::kMinimumSqlite)
        return true;
    prompter.tell(tr("MDAC 2.7 is not installed.  Please visit our website and "
                     "select Download.  Then select MDAC."));
    return false;
}

bool Startup::start(bool showWindow)
{
    const qint64 runStart = QDateTime::currentSecsSinceEpoch();
    m_session = std::make_unique<Session>(m_home, m_settings);
    if (!checkDataAccess(m_prompter, Database::runtimeVersion()))
        return false;

    if (const Attempt<> made = m_home.ensureExists(); !made) {
        m_prompter.tell(tr("Cannot create the directory %1: %2.").arg(m_home.path(), made.why()));
        return false;
    }
    // Before the store is touched: a second run on this home would write the store under
    // the first one's tree.
    m_lock = std::make_unique<HomeLock>(m_home);
    if (!m_lock->acquire()) {
        m_prompter.tell(m_lock->refusal());
        return false;
    }

    QApplication::setWindowIcon(AppIcon::icon());
    m_names = std::make_unique<AccessibleNames>();
    qApp->installEventFilter(m_names.get());
    m_splash = std::make_unique<SplashWindow>();
    try {
        m_splash->setStatus(tr("Opening database"));
        StoreSchema::openDatabase(m_session->db(), m_home);
        // The home keeps a help text of its own for a program that runs without its
        // installed data; one that cannot be written only costs that fallback.
        HelpLocator::ensureInHome(m_home);
        m_splash->setStatus(tr("Opening database"));
    } catch (const StoreError& e) {
        m_prompter.tell(e.message());
        return false;
    }

    if (showWindow)
        m_splash->showSplash(tr("Starting"), 1, 8);
    m_view = std::make_unique<ViewSettings>(m_settings);
    m_view->read();

    m_splash->splashStep(tr("Load templates"));
    m_templates = std::make_unique<DrawerTemplates>(m_home);
    m_templates->loadDrawerTemplates();

    m_splash->splashStep(tr("Loading main menu"));
    m_progress = std::make_unique<ProgressWindow>();
    m_base = std::make_unique<CommandContext>(
        CommandContext{*m_session, m_state, m_prompter, m_choosers, *m_progress, *m_view});
    m_notifier = std::make_unique<MailPageNotifier>(*m_base);
    m_notifiers = std::make_unique<PageNotifiers>();
    m_notifiers->add(*m_notifier);
    m_base->pageNotifier = m_notifiers.get();
    m_window = std::make_unique<NavWindow>(*m_base, *m_templates);
    m_window->load([this](const QString& text) { m_splash->splashStep(text); });
    m_progress->setWindowIcon(m_window->windowIcon());

    m_splash->splashStep(tr("Initializing"));
    m_state.findRecord().initFindDefaults();

    m_splash->finish();
    if (showWindow) {
        m_window->showAsLoaded();
        if (m_window->pageList()->isVisible())
            m_window->pageList()->setFocus();
    }
    EditRescue::tellWhatWasKept(m_settings, m_prompter);
    // Once the window is up: what a run that ended early left in the page directories goes.
    // Files aside from before this run's start are leftovers; later ones are this run's.
    m_sweep = std::make_unique<HomeSweep>(m_session->db(), m_session->paths(), runStart);
    QTimer::singleShot(0, m_sweep.get(), &HomeSweep::start);
    startTextReading();
    return true;
}

void Startup::startTextReading()
{
    if (m_textWorker.isEmpty())
        return;
    QString languages = m_settings.get(keys::OcrLanguages);
    if (languages.isEmpty())
        languages =
            TextRecognizer::defaultLanguages(QLocale(), TextRecognizer::installedLanguages());
    m_reading =
        std::make_unique<TextReading>(m_session->db(), m_session->paths(), languages, m_textWorker);
    if (!m_reading->start()) {
        m_reading.reset();
        return;
    }
    new ReadingLine(*m_reading->reader(), *m_window->statusBar());
    QObject::connect(&m_window->textCommands(), &TextCommands::languagesChosen, m_reading.get(),
                     &TextReading::setLanguages);
    m_notifiers->add(*m_reading);
}

} // namespace qmr
