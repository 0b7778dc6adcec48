#include "navigator/navwindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QFrame>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QSplitterHandle>
#include <QVBoxLayout>

#include "core/prompter.h"
#include "core/runstate.h"
#include "exchange/exchangecommands.h"
#include "filing/clipboardcommands.h"
#include "filing/deletecommand.h"
#include "filing/pagefileadder.h"
#include "filing/thumbnailcache.h"
#include "find/findcommands.h"
#include "help/helpcommands.h"
#include "mail/mailcommands.h"
#include "navigator/containerlist.h"
#include "navigator/foundbranch.h"
#include "navigator/itemcommands.h"
#include "navigator/navdragdrop.h"
#include "navigator/navigator.h"
#include "navigator/navtree.h"
#include "navigator/pagepane.h"
#include "navigator/renamecontroller.h"
#include "print/printcommands.h"
#include "resources/buttonicons.h"
#include "scan/scancommands.h"
#include "store/commandguard.h"
#include "store/session.h"
#include "text/searchablepdfcommand.h"
#include "viewer/editrescue.h"
#include "viewer/viewercommands.h"

namespace qmr {

namespace {

constexpr int kTwipsPerPixel = 15;
const QString kFormName = QStringLiteral("frmNavTree");

} // namespace

NavWindow::NavWindow(const CommandContext& base, DrawerTemplates& templates, QWidget* parent)
    : QMainWindow(parent), m_base(base), m_templates(templates)
{
    setObjectName(kFormName);
    setWindowTitle(tr("Quillmere"));
    // The application's icon when the program set one, and every dialog takes it from here.
    const QIcon appIcon = QApplication::windowIcon();
    setWindowIcon(appIcon.isNull() ? m_icons.icon(QStringLiteral("cabinet")) : appIcon);
    buildWidgets();
    m_navigator =
        std::make_unique<Navigator>(m_base, *m_tree, *m_list, *m_pages, m_menus, m_icons, this);
    buildMenus();
}

NavWindow::~NavWindow() = default;

void NavWindow::buildWidgets()
{
    auto* central = new QWidget(this);
    auto* outer = new QVBoxLayout(central);
    outer->setContentsMargins(4, 0, 4, 4);
    outer->setSpacing(4);

    auto* line = new QFrame(central);
    line->setObjectName(QStringLiteral("linSeparator"));
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    outer->addWidget(line);

    auto* buttons = new QHBoxLayout();
    buttons->setSpacing(0);
    for (const auto& [name, caption] : {std::pair{"cmdScanDoc", QT_TR_NOOP("&Scan Page")},
                                        std::pair{"cmdScanPic", QT_TR_NOOP("Scan &Picture")},
                                        std::pair{"cmdFind", QT_TR_NOOP("Find")}}) {
        auto* b = new QPushButton(tr(caption), central);
        b->setObjectName(QLatin1String(name));
        b->setMinimumWidth(100);
        // Enabled by the command that a feature brings for it.
        b->setEnabled(false);
        b->setToolTip(tr("Not available in this version yet"));
        buttons->addWidget(b);
    }
    ButtonIcons::apply(central);
    buttons->addStretch(1);
    outer->addLayout(buttons);

    m_splitter = new QSplitter(Qt::Horizontal, central);
    m_splitter->setObjectName(QStringLiteral("splMain"));
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(4);
    m_tree = new NavTree(m_splitter);
    m_tree->setMinimumWidth(1000 / kTwipsPerPixel);

    auto* right = new QWidget(m_splitter);
    right->setMinimumWidth(1000 / kTwipsPerPixel);
    auto* rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    m_list = new ContainerList(right);
    rightLayout->addWidget(m_list);
    m_pages = new PagePane(m_icons, m_base.view, m_base.session.paths(), right);
    rightLayout->addWidget(m_pages);
    // The pane's view switch stands at the right of the button row, above the pane.
    buttons->addWidget(m_pages->viewSwitch(), 0, Qt::AlignBottom);
    m_pages->hide();
    m_splitter->addWidget(m_tree);
    m_splitter->addWidget(right);
    m_splitter->setStretchFactor(1, 1);
    // The width is saved when the divider is let go, not while it moves.
    m_splitter->handle(1)->installEventFilter(this);
    outer->addWidget(m_splitter, 1);
    setCentralWidget(central);
}

void NavWindow::buildMenus()
{
    CommandTable commands;
    m_viewerCommands = std::make_unique<ViewerCommands>(m_navigator->context());
    m_navigator->setPageOpener(&m_viewerCommands->pageOpener());
    m_viewerCommands->addTo(commands);
    MailCommands(m_navigator->context()).addTo(commands);
    commands.insert(QStringLiteral("mnuFileExit"), [this] { mnuFileExit(); });
    commands.insert(QStringLiteral("mnuPopupRootRefresh"),
                    [this] { m_navigator->refreshNavTree(); });
    m_itemCommands = std::make_unique<ItemCommands>(m_navigator->context(), m_templates);
    m_itemCommands->addTo(commands);
    commands.insert(QStringLiteral("mnuPopupPageOpen"),
                    [this] { m_navigator->openPage(m_pages->selectedPageId()); });
    m_printCommands = std::make_unique<PrintCommands>(m_navigator->context());
    m_printCommands->addTo(commands);
    m_viewerCommands->pageOpener().setPrintHandler(
        [this](qint32 pageId) { m_printCommands->printPage(pageId); });
    SearchablePdfCommand::addTo(m_navigator->context(), commands);
    m_helpCommands = std::make_unique<HelpCommands>(m_navigator->context());
    m_helpCommands->addTo(commands);
    m_deleteCommand = std::make_unique<DeleteCommand>(m_navigator->context());
    m_deleteCommand->addTo(commands);
    m_navigator->rename().addTo(commands);
    m_foundBranch = std::make_unique<FoundBranch>(*m_tree, m_icons);
    m_findCommands = std::make_unique<FindCommands>(m_navigator->context(), *m_foundBranch);
    m_findCommands->addTo(commands);
    m_exchangeCommands = std::make_unique<ExchangeCommands>(m_navigator->context());
    m_exchangeCommands->addTo(commands);
    m_clipboardCommands = std::make_unique<ClipboardCommands>(m_navigator->context());
    m_clipboardCommands->addTo(commands);
    // Paste is offered whenever there is something to put: pages cut or copied here, or files
    // on the desktop's clipboard.
    m_navigator->popups().setPasteQuery([this] { return m_clipboardCommands->canPaste(); });
    m_dragDrop = std::make_unique<NavDragDrop>(m_navigator->context(), *m_tree, *m_list, *m_pages);
    // Pages coming in from files bring their thumbnails; the page pane waits for those.
    for (PageFileAdder* files : {&m_dragDrop->files(), &m_clipboardCommands->clipboard().files()}) {
        connect(files, &PageFileAdder::thumbnailComing, &m_pages->thumbnails(),
                &ThumbnailCache::expect);
        connect(files, &PageFileAdder::thumbnailDone, &m_pages->thumbnails(),
                &ThumbnailCache::arrived);
    }
    m_scanCommands = std::make_unique<ScanCommands>(m_navigator->context());
    m_scanCommands->addTo(commands);
    m_menus.build(menuBar(), commands);
    m_menus.action(QStringLiteral("mnuHelpHelpTopics"))->setShortcut(QKeySequence::HelpContents);
    // A button works once a command stands behind its name.
    for (QPushButton* button : centralWidget()->findChildren<QPushButton*>()) {
        const auto command = commands.constFind(button->objectName());
        if (command == commands.constEnd())
            continue;
        button->setEnabled(true);
        button->setToolTip(QString());
        connect(button, &QPushButton::clicked, this, [run = command.value()] { run(); });
    }

    // The entries follow the clipboard, and are asked again as their menus open and before a
    // key runs one, since a cut here changes nothing on the desktop's clipboard.
    const auto updatePaste = [this] { m_navigator->popups().updatePaste(); };
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, updatePaste);
    for (const char* name : {"mnuPopupDocument", "mnuPopupPage"})
        if (QMenu* menu = m_menus.menu(QLatin1String(name)))
            connect(menu, &QMenu::aboutToShow, this, updatePaste);
    updatePaste();
    connect(m_pages, &PagePane::commandRequested, this, [this](const QString& name) {
        if (name.endsWith(QLatin1String("Paste")))
            m_navigator->popups().updatePaste();
        m_menus.run(name);
    });
    connect(m_navigator.get(), &Navigator::documentActivated, this,
            [this](qint32 id) { m_itemCommands->properties(Level::Document, id); });
    auto* refresh = new QShortcut(QKeySequence(Qt::Key_F5), m_tree);
    refresh->setContext(Qt::WidgetShortcut);
    connect(refresh, &QShortcut::activated, this, [this] { m_navigator->refreshNavTree(); });
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    escape->setContext(Qt::WindowShortcut);
    connect(escape, &QShortcut::activated, this, &NavWindow::mnuFileExit);
    // Escape in a label being edited ends the edit, never the program.
    connect(&m_navigator->rename(), &RenameController::editing, escape,
            [escape](bool on) { escape->setEnabled(!on); });
    m_navigator->popups().showInsertKeys(ContextSource::Tree);
}

int NavWindow::treeWidthTwips() const
{
    return m_tree->width() * kTwipsPerPixel;
}

// ---- load and show ------------------------------------------------------------------------

void NavWindow::restorePlacement()
{
    Settings& settings = m_base.session.settings();
    m_firstShow = settings.flag(keys::FirstShow);
    if (!m_firstShow) {
        Placement current{y(), x(), height(), width(), 0};
        const Placement p = settings.restorePlacement(kFormName, current);
        const QRect saved(p.left, p.top, p.width, p.height);
        // A place saved on a larger or a departed screen would put the window out of reach.
        const QScreen* s = QGuiApplication::screenAt(saved.center());
        if (p.width > 0 && p.height > 0)
            setGeometry(s ? saved : QRect(QPoint(0, 0), saved.size()));
        if (p.windowState == 2)
            setWindowState(windowState() | Qt::WindowMaximized);
    }
    settings.setFlag(keys::FirstShow, false);

    const double twips = settings.number(keys::TreeWidth);
    const int treePixels = twips > 0 ? int(twips / kTwipsPerPixel) : 3000 / kTwipsPerPixel;
    m_splitter->setSizes({treePixels, qMax(1, width() - treePixels)});
}

void NavWindow::load(const std::function<void(const QString&)>& splashStep)
{
    auto step = [&](const QString& text) {
        if (splashStep)
            splashStep(text);
    };
    m_base.state.selection().clear();
    restorePlacement();

    step(tr("Loading main menu"));
    guarded(m_base.prompter, [this] { m_navigator->loadNavTree(); });
    step(tr("Loading main menu"));
    m_tree->expandNode(QStringLiteral("ROOT"));
    m_menus.showOnly(QString());
    m_navigator->restoreLastNode();
    // The tree has the keys at start, not the first button that works.
    m_tree->setFocus();
    step(tr("Loading main menu"));
}

void NavWindow::showAsLoaded()
{
    if (m_firstShow || (windowState() & Qt::WindowMaximized)) {
        // Without a window manager "maximised" means nothing; the screen's size still does.
        // A restored window keeps its normal rectangle for when it is made smaller.
        if (QScreen* s = screen(); s && m_firstShow)
            setGeometry(s->availableGeometry());
        showMaximized();
    } else {
        show();
    }
    // The splitter knows its real width only now.
    const int tree = m_splitter->sizes().value(0);
    m_splitter->setSizes({tree, qMax(1, m_splitter->width() - tree)});
    refitTree();
}

void NavWindow::refitTree()
{
    if (!m_splitter || m_base.session.settings().contains(QLatin1String(keys::TreeWidth.name)))
        return;
    const int tree = m_splitter->sizes().value(0);
    const int fitted = fittedTreeWidth(tree);
    if (fitted != tree)
        m_splitter->setSizes({fitted, qMax(1, m_splitter->width() - fitted)});
}

void NavWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    refitTree();
}

int NavWindow::fittedTreeWidth(int standard) const
{
    // Until the divider is first moved, the names in view are not cut: the tree is as wide as
    // the widest, never narrower than its standard width, and takes at most a third of the
    // window.
    int needed = m_tree->namesWidth() + 2 * m_tree->frameWidth();
    if (m_tree->verticalScrollBar()->maximum() > 0)
        needed += m_tree->verticalScrollBar()->sizeHint().width();
    const int third = qMax(m_tree->minimumWidth(), width() / 3);
    return qMin(qMax(standard, needed), third);
}

// ---- end of a run -------------------------------------------------------------------------

void NavWindow::savePlacement()
{
    int state = 0;
    if (isMinimized())
        state = 1;
    else if (isMaximized())
        state = 2;
    const QRect g = geometry();
    m_base.session.settings().savePlacement(
        kFormName, Placement{g.top(), g.left(), g.height(), g.width(), state});
}

void NavWindow::finishRun()
{
    if (m_finished)
        return;
    m_finished = true;
    savePlacement();
    Settings& settings = m_base.session.settings();
    settings.set(keys::LastNavTreeNodeKey, m_navigator->lastNodeKeyToSave());
    settings.sync();
    m_base.session.db().close();
}

void NavWindow::mnuFileExit()
{
    // Enter answers No: Escape then Enter must not end the program.
    if (!m_base.prompter.confirm(tr("Exit the Quillmere?"), Prompter::Buttons::YesNoCancel,
                                 Prompter::Answer::No))
        return;
    if (!closeOtherWindows())
        return;
    exitRun();
}

bool NavWindow::closeOtherWindows()
{
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != this && w->isVisible() && !w->close())
            return false;
    return true;
}

void NavWindow::exitRun()
{
    // Only a run that is made to end still has viewers open here; File > Exit closed them.
    EditRescue(m_base.session.home(), m_base.session.settings()).keepOpenViewers();
    finishRun();
    emit exitRequested();
}

void NavWindow::closeEvent(QCloseEvent* event)
{
    // Closing the window asks nothing of its own; the other windows go with it, and one that
    // keeps unsaved work open keeps the run going.
    if (!closeOtherWindows()) {
        event->ignore();
        return;
    }
    finishRun();
    event->accept();
}

bool NavWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease && m_splitter &&
        watched == m_splitter->handle(1))
        m_base.session.settings().set(keys::TreeWidth, QString::number(treeWidthTwips()));
    return QMainWindow::eventFilter(watched, event);
}

} // namespace qmr
