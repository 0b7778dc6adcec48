#include "navigator/navwindow.h"

#include "core/choosers.h"
#include "core/progress.h"
#include "dialogs/itemdialog.h"
#include "dialogs/pagenumberdialog.h"
#include "dialogs/pagepropertiesdialog.h"
#include "core/prompter.h"
#include "navigator/navicons.h"
#include "navigator/navtree.h"
#include "store/cipher.h"
#include "store/itemrules.h"
#include "store/session.h"
#include "store/storeerror.h"
#include "templates/drawertemplates.h"
#include "templates/sampledialog.h"
#include "templates/samplecabinets.h"
#include "templates/templateeditor.h"

#include <QApplication>
#include <QGuiApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QSplitterHandle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace qmr {

namespace {

constexpr int kTwipsPerPixel = 15;
constexpr int kKeyRole = Qt::UserRole + 1;
const QString kFormName = QStringLiteral("frmNavTree");

QString rootKey()
{
    return QStringLiteral("ROOT");
}

} // namespace

NavWindow::NavWindow(Session& session, Prompter& prompter, Choosers& choosers, Progress& progress,
                     DrawerTemplates& templates, QWidget* parent)
    : QMainWindow(parent), m_session(session), m_prompter(prompter), m_choosers(choosers),
      m_progress(progress), m_templates(templates)
{
    setObjectName(kFormName);
    setWindowTitle(QStringLiteral("Quillmere"));
    setWindowIcon(m_icons.icon(QStringLiteral("cabinet")));
    buildWidgets();
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
    auto makeButton = [&](const char* name, const char* caption) {
        auto* b = new QPushButton(QString::fromUtf8(caption), central);
        b->setObjectName(QLatin1String(name));
        b->setMinimumWidth(100);
        buttons->addWidget(b);
        return b;
    };
    m_scanDoc = makeButton("cmdScanDoc", "&Scan Page");
    m_scanPic = makeButton("cmdScanPic", "Scan &Picture");
    m_find = makeButton("cmdFind", "Find");
    // Scanning and finding arrive with their own pieces of work.
    for (QPushButton* b : {m_scanDoc, m_scanPic, m_find}) {
        b->setEnabled(false);
        b->setToolTip(QStringLiteral("Not available in this version yet"));
    }
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
    m_list = new QListWidget(right);
    m_list->setObjectName(QStringLiteral("lvwMain"));
    m_list->setViewMode(QListView::IconMode);
    m_list->setIconSize(QSize(32, 32));
    m_list->setGridSize(QSize(130, 84));
    m_list->setResizeMode(QListView::Adjust);
    m_list->setMovement(QListView::Static);
    m_list->setWordWrap(true);
    m_list->setSortingEnabled(true);
    rightLayout->addWidget(m_list);
    m_pages = new QTreeWidget(right);
    m_pages->setObjectName(QStringLiteral("lvwThumb"));
    m_pages->setRootIsDecorated(false);
    m_pages->setHeaderLabels({QStringLiteral("Page #"), QStringLiteral("Filename"),
                              QStringLiteral("Size"), QStringLiteral("Scan date")});
    m_pages->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_pages->hide();
    rightLayout->addWidget(m_pages);
    m_splitter->addWidget(m_tree);
    m_splitter->addWidget(right);
    m_splitter->setStretchFactor(1, 1);
    // The width is saved when the divider is let go, not while it moves.
    m_splitter->handle(1)->installEventFilter(this);
    outer->addWidget(m_splitter, 1);
    setCentralWidget(central);

    connect(m_tree, &NavTree::expanding, this,
            [this](const QString& key) { guarded([&] { onExpand(key); }); });
    connect(m_tree, &NavTree::nodeClicked, this, &NavWindow::nodeClick);
    connect(m_tree, &NavTree::enterPressed, this, &NavWindow::nodeClick);
    connect(m_tree, &NavTree::contextRequested, this, &NavWindow::onTreeMouseUp);
    connect(m_list, &QListWidget::itemActivated, this, &NavWindow::onListActivated);
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        const NodeKey key = NodeKey::parse(NavTree::keyOf(item));
        if (!m_nodeBusy && key.level() == Level::Document) {
            properties(Level::Document, key.id());
            m_tree->setFocus();
        }
    });
    m_pages->setSelectionMode(QAbstractItemView::ExtendedSelection);
    // The lists tell which control spoke last, and give their own pop-up menus.
    m_list->viewport()->installEventFilter(this);
    m_pages->viewport()->installEventFilter(this);
    m_list->installEventFilter(this);
    m_pages->installEventFilter(this);
    m_tree->installEventFilter(this);

    auto* refresh = new QShortcut(QKeySequence(Qt::Key_F5), m_tree);
    refresh->setContext(Qt::WidgetShortcut);
    connect(refresh, &QShortcut::activated, this, &NavWindow::refreshNavTree);
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    escape->setContext(Qt::WindowShortcut);
    connect(escape, &QShortcut::activated, this, &NavWindow::mnuFileExit);
}

void NavWindow::buildMenus()
{
    NavMenus::Commands commands;
    commands.insert(QStringLiteral("mnuFileExit"), [this] { mnuFileExit(); });
    commands.insert(QStringLiteral("mnuPopupRootRefresh"), [this] { refreshNavTree(); });
    commands.insert(QStringLiteral("mnuPopupRootNewFileCabinet"), [this] { newCabinet(); });
    commands.insert(QStringLiteral("mnuPopupCabinetNewCabinet"), [this] { newCabinet(); });
    // Each level's menu adds a sibling ("New Drawer" on a drawer) and a child ("New Folder"
    // on a drawer), and shows its properties.
    for (const Level level : {Level::Cabinet, Level::Drawer, Level::Folder, Level::Document}) {
        const QString menu = QStringLiteral("mnuPopup") + QLatin1String(levelInfo(level).word);
        const Level child = *childLevel(level);
        if (level != Level::Cabinet)
            commands.insert(menu + QStringLiteral("New") + QLatin1String(levelInfo(level).word),
                            [this, level] { newSibling(level); });
        if (child != Level::Page)
            commands.insert(menu + QStringLiteral("New") + QLatin1String(levelInfo(child).word),
                            [this, level] { newChild(level); });
        commands.insert(menu + QStringLiteral("Properties"), [this, level] { properties(level); });
    }
    commands.insert(QStringLiteral("mnuPopupPageProperties"), [this] { pageProperties(); });
    commands.insert(QStringLiteral("mnuPopupDocumentRepaginate"), [this] { repaginateDocument(); });
    commands.insert(QStringLiteral("mnuPopupPageRenumber"), [this] { renumberPage(); });
    commands.insert(QStringLiteral("mnuToolsDrawerTemplates"), [this] { drawerTemplates(); });
    commands.insert(QStringLiteral("mnuToolsCreateSampleCabinet"),
                    [this] { createSampleCabinet(); });
    m_menus.build(menuBar(), commands);
}

void NavWindow::guarded(const std::function<void()>& command)
{
    try {
        command();
    } catch (const StoreError& e) {
        m_prompter.tell(e.message());
    } catch (const std::exception& e) {
        m_prompter.tell(QString::fromLocal8Bit(e.what()));
    }
}

int NavWindow::treeWidthTwips() const
{
    return m_tree->width() * kTwipsPerPixel;
}

// ---- load and show ------------------------------------------------------------------------

void NavWindow::load(const std::function<void(const QString&)>& splashStep)
{
    auto step = [&](const QString& text) {
        if (splashStep)
            splashStep(text);
    };
    m_formLoading = true;
    m_session.selection().clear();
    Settings& settings = m_session.settings();

    m_firstShow =
        settings.getSetting(QStringLiteral("FirstShow"), QStringLiteral("Y")) == QLatin1String("Y");
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
    settings.saveSetting(QStringLiteral("FirstShow"), QStringLiteral("N"));

    bool ok = false;
    const double twips =
        settings.getSetting(QStringLiteral("tvwMainWidth"), QStringLiteral("3000")).toDouble(&ok);
    const int treePixels = ok && twips > 0 ? int(twips / kTwipsPerPixel) : 3000 / kTwipsPerPixel;
    m_splitter->setSizes({treePixels, qMax(1, width() - treePixels)});

    step(QStringLiteral("Loading main menu"));
    guarded([this] { loadNavTree(); });
    step(QStringLiteral("Loading main menu"));
    m_tree->expandNode(rootKey());
    m_menus.showOnly(QString());
    guarded([this] { restoreLastNode(); });
    step(QStringLiteral("Loading main menu"));
    m_formLoading = false;
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
}

// ---- tree population ----------------------------------------------------------------------

QString NavWindow::getCabinetIcon(qint32 cabinetId) const
{
    return m_session.locks().isCabinetOpen(cabinetId) ? QStringLiteral("cabinet")
                                                      : QStringLiteral("locked");
}

QIcon NavWindow::iconFor(Level level, qint32 id) const
{
    if (level == Level::Cabinet)
        return m_icons.icon(getCabinetIcon(id));
    return m_icons.icon(QLatin1String(levelInfo(level).icon));
}

QString NavWindow::nodeText(Level level, const QString& name, const QDate& date) const
{
    if (level == Level::Document && date.isValid())
        return name + QStringLiteral(" (") + ItemRules::displayDate(date) + QLatin1Char(')');
    return name;
}

QString NavWindow::nodeText(Level level, const ItemRow& row) const
{
    return nodeText(level, row.name, row.date);
}

void NavWindow::loadNavTree()
{
    m_list->clear();
    m_tree->clearNodes();
    m_tree->addNode(QString(), rootKey(), QStringLiteral("File Cabinets"),
                    m_icons.icon(QStringLiteral("root")));
    const QVector<ItemRow> cabinets = m_session.items().children(Level::Cabinet, -1);
    if (cabinets.isEmpty()) {
        // A store without cabinets always gets one, so that the root is never bare.
        SampleCabinets samples(m_session.home(), m_session.db(), this);
        samples.ensureFile();
        samples.createSampleCabinet(QStringLiteral("Generic File Cabinet"));
        return;
    }
    for (const ItemRow& cabinet : cabinets) {
        const QString key = NodeKey::of(Level::Cabinet, cabinet.id).text();
        m_tree->addNode(rootKey(), key, cabinet.name, iconFor(Level::Cabinet, cabinet.id));
        auto* item = new QListWidgetItem(iconFor(Level::Cabinet, cabinet.id), cabinet.name);
        item->setData(kKeyRole, key);
        m_list->addItem(item);
        // A cabinet with a password stands bare until it is opened, even if it was open last time.
        if (decryptText(cabinet.password, Cipher::key()).isEmpty())
            addChildNodes(Level::Cabinet, cabinet.id);
    }
}

void NavWindow::refreshNavTree()
{
    guarded([this] {
        hidePagePane();
        loadNavTree();
        m_tree->expandNode(rootKey());
    });
}

void NavWindow::addChildNodes(Level parentLevel, qint32 parentId)
{
    const Level level = *childLevel(parentLevel);
    const QString parentKey = NodeKey::of(parentLevel, parentId).text();
    if (!m_tree->node(parentKey))
        return;
    for (const ItemRow& row : m_session.items().children(level, parentId))
        m_tree->addNode(parentKey, NodeKey::of(level, row.id).text(), nodeText(level, row),
                        iconFor(level, row.id));
}

void NavWindow::addDrawersToCabinetNode(qint32 cabinetId)
{
    addChildNodes(Level::Cabinet, cabinetId);
}

void NavWindow::addFoldersToDrawerNodes(qint32 cabinetId)
{
    for (const ItemRow& drawer : m_session.items().children(Level::Drawer, cabinetId))
        addChildNodes(Level::Drawer, drawer.id);
}

void NavWindow::addDocumentsToFolderNodes(qint32 drawerId)
{
    for (const ItemRow& folder : m_session.items().children(Level::Folder, drawerId))
        addChildNodes(Level::Folder, folder.id);
}

void NavWindow::onExpand(const QString& text)
{
    const NodeKey key = NodeKey::parse(text);
    if (key.level() == Level::Cabinet)
        addFoldersToDrawerNodes(key.id());
    else if (key.level() == Level::Drawer)
        addDocumentsToFolderNodes(key.id());
}

// ---- clicks -------------------------------------------------------------------------------

void NavWindow::nodeClick(const QString& key)
{
    m_contextSource = QStringLiteral("T");
    tvwMainProcessNode(key);
}

void NavWindow::tvwMainProcessNode(const QString& text)
{
    SelectionRecord& record = m_session.selection();
    const NodeKey clicked = NodeKey::parse(text);
    bool proceed = true;
    try {
        if (clicked.level() == Level::Cabinet && !m_session.locks().isCabinetOpen(clicked.id()) &&
            !m_session.locks().openCabinet(clicked.id(), m_choosers, m_prompter, this))
            proceed = false;
    } catch (const StoreError& e) {
        m_prompter.tell(e.message());
        proceed = false;
    }
    if (proceed && text == record.lastNodeKey)
        return; // the node handled last: nothing is redone
    if (proceed) {
        m_nodeBusy = true;
        m_menus.showOnly(QString());
        record.clear();
        guarded([&] {
            // The selected node counts, which may be a rebuilt cabinet node.
            const NodeKey key = NodeKey::parse(m_tree->selectedKey());
            if (key.prefix() == QLatin1String("ROO")) {
                if (!key.isFoundRoot()) {
                    m_menus.showOnly(QStringLiteral("mnuPopupRoot"));
                    showCabinetsInListView();
                }
                return;
            }
            const std::optional<Level> level = key.level();
            if (level == Level::Cabinet) {
                if (!m_session.locks().openCabinet(key.id(), m_choosers, m_prompter, this))
                    return;
                // Opening may have rebuilt the node; what is selected now is the cabinet.
            }
            if (level && *level != Level::Page) {
                m_menus.showOnly(NavMenus::levelMenus().at(static_cast<int>(*level) + 1));
                setRecordFromKey(NodeKey::parse(m_tree->selectedKey()));
                switch (*level) {
                case Level::Cabinet:
                    addDrawersToCabinetNode(key.id());
                    addFoldersToDrawerNodes(key.id());
                    showChildrenInList(Level::Drawer, key.id());
                    break;
                case Level::Drawer:
                    addDocumentsToFolderNodes(key.id());
                    showChildrenInList(Level::Folder, key.id());
                    break;
                case Level::Folder:
                    showChildrenInList(Level::Document, key.id());
                    break;
                default:
                    showPagesInListView(key.id());
                    break;
                }
            } else if (key.foundLevel() == Level::Document) {
                showPagesInListView(key.id());
            }
        });
    }
    record.lastNodeKey = text;
    m_nodeBusy = false;
}

void NavWindow::setRecordFromKey(const NodeKey& key)
{
    SelectionRecord& record = m_session.selection();
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page)
        return;
    record.idOf(*level) = key.id();
    if (const QTreeWidgetItem* node = m_tree->node(key.text()))
        record.nameOf(*level) = node->text(0);
    if (*level != Level::Cabinet)
        record.currentParentId = NodeKey::parse(m_tree->parentKey(key.text())).id();
}

void NavWindow::onTreeMouseUp(Qt::MouseButton button)
{
    // After any button the commands find their target anew: from the menu's node after a
    // right click, else from the selected node.
    m_contextSource = QStringLiteral("T");
    m_session.selection().clear();
    if (button != Qt::RightButton)
        return;
    guarded([this] {
        // The menu is for the selected node; a right click selects nothing by itself.
        const NodeKey key = NodeKey::parse(m_tree->selectedKey());
        QMenu* popup = nullptr;
        if (key.isFoundRoot()) {
            popup = m_menus.menu(QStringLiteral("mnuPopupFound"));
        } else if (key.isRoot()) {
            popup = m_menus.menu(QStringLiteral("mnuPopupRoot"));
        } else if (const std::optional<Level> level = key.level(); level && *level != Level::Page) {
            if (*level == Level::Cabinet && !m_session.locks().isCabinetOpen(key.id()))
                return;
            setRecordFromKey(key);
            popup = m_menus.menu(NavMenus::levelMenus().at(static_cast<int>(*level) + 1));
        }
        if (popup)
            popup->exec(QCursor::pos());
    });
}

// ---- the container list -------------------------------------------------------------------

void NavWindow::hidePagePane()
{
    m_pages->hide();
    m_list->show();
}

void NavWindow::showChildrenInList(Level childLevel, qint32 parentId)
{
    hidePagePane();
    m_list->clear();
    for (const ItemRow& row : m_session.items().children(childLevel, parentId)) {
        // The list shows bare names: no date on a document.
        auto* item = new QListWidgetItem(iconFor(childLevel, row.id), row.name);
        item->setData(kKeyRole, NodeKey::of(childLevel, row.id).text());
        m_list->addItem(item);
    }
}

void NavWindow::showCabinetsInListView()
{
    showChildrenInList(Level::Cabinet, -1);
}

void NavWindow::ShowDrawersInListView(qint32 cabinetId)
{
    const QString key = NodeKey::of(Level::Cabinet, cabinetId).text();
    m_tree->selectNode(key);
    m_tree->expandNode(key);
    guarded([&] { showChildrenInList(Level::Drawer, cabinetId); });
}

void NavWindow::showPagesInListView(qint32 documentId)
{
    m_list->hide();
    m_pages->show();
    m_pages->clear();
    for (const PageRow& page : m_session.items().pages(documentId)) {
        auto* item = new QTreeWidgetItem(m_pages);
        item->setText(0, QStringLiteral("Page ") + QString::number(page.pageNumber));
        item->setText(1, page.filename.isEmpty() ? m_session.paths().computedPagePath(page.id)
                                                 : page.filename);
        item->setText(2, QLocale().toString(page.fileSize));
        item->setText(3, ItemRules::displayDate(page.scanDate));
        item->setData(0, kKeyRole, NodeKey::of(Level::Page, page.id).text());
        item->setIcon(0, m_icons.icon(QStringLiteral("page")));
    }
}

void NavWindow::onListActivated(QListWidgetItem* item)
{
    if (!item)
        return;
    guarded([&] {
        const NodeKey key = NodeKey::parse(item->data(kKeyRole).toString());
        const std::optional<Level> level = key.level();
        if (!level || *level == Level::Page)
            return;
        if (*level == Level::Cabinet &&
            !m_session.locks().openCabinet(key.id(), m_choosers, m_prompter, this))
            return;
        // This path moves the tree's selection only; the record and menus stay as they were.
        if (*level == Level::Cabinet)
            addDrawersToCabinetNode(key.id());
        m_tree->selectNode(key.text());
        m_tree->expandNode(key.text());
        if (*level == Level::Document)
            showPagesInListView(key.id());
        else
            showChildrenInList(*childLevel(*level), key.id());
    });
}

// ---- public routines for dialogs and modules ----------------------------------------------

void NavWindow::addItemNode(Level level, qint32 parentId, qint32 id, const QString& text)
{
    const QString parentKey =
        level == Level::Cabinet ? rootKey() : NodeKey::of(*parentLevel(level), parentId).text();
    const QString key = NodeKey::of(level, id).text();
    if (m_tree->addNode(parentKey, key, text, iconFor(level, id)))
        m_tree->selectNode(key);
}

void NavWindow::AddCabinetToNavTree(qint32 cabinetId, const QString& name)
{
    addItemNode(Level::Cabinet, -1, cabinetId, name);
    ShowDrawersInListView(cabinetId);
}

void NavWindow::AddDrawerToNavTree(qint32 cabinetId, qint32 drawerId, const QString& name)
{
    addItemNode(Level::Drawer, cabinetId, drawerId, name);
}

void NavWindow::AddFolderToNavTree(qint32 drawerId, qint32 folderId, const QString& name)
{
    addItemNode(Level::Folder, drawerId, folderId, name);
}

void NavWindow::AddDocumentToNavTree(qint32 folderId, qint32 documentId, const QString& name,
                                     const QDate& dateOnDocument)
{
    addItemNode(Level::Document, folderId, documentId,
                nodeText(Level::Document, name, dateOnDocument));
}

void NavWindow::updateItemName(Level level, qint32 id, const QString& text)
{
    // Each of the three places may be missing; the others are written all the same.
    m_tree->setNodeText(NodeKey::of(level, id).text(), text);
    m_tree->setNodeText(NodeKey::found(level, id).text(), text);
    const QString listKey = NodeKey::of(level, id).text();
    for (int i = 0; i < m_list->count(); ++i)
        if (m_list->item(i)->data(kKeyRole).toString() == listKey)
            m_list->item(i)->setText(text);
}

void NavWindow::UpdateCabinetName(qint32 cabinetId, const QString& name)
{
    updateItemName(Level::Cabinet, cabinetId, name);
}

void NavWindow::UpdateDrawerName(qint32 drawerId, const QString& name)
{
    updateItemName(Level::Drawer, drawerId, name);
}

void NavWindow::UpdateFolderName(qint32 folderId, const QString& name)
{
    updateItemName(Level::Folder, folderId, name);
}

void NavWindow::UpdateDocumentName(qint32 documentId, const QString& name,
                                   const QDate& dateOnDocument)
{
    updateItemName(Level::Document, documentId, nodeText(Level::Document, name, dateOnDocument));
}

void NavWindow::RebuildCabinetNode(qint32 cabinetId, const QString& name)
{
    const QString key = NodeKey::of(Level::Cabinet, cabinetId).text();
    m_tree->removeNode(key);
    // Removing and adding makes the tree fill the drawers in anew.
    if (m_tree->addNode(rootKey(), key, name, m_icons.icon(QStringLiteral("cabinet")))) {
        m_tree->selectNode(key);
        m_tree->expandNode(key);
    }
}

// ---- start and end of a run ---------------------------------------------------------------

void NavWindow::restoreLastNode()
{
    SelectionRecord& record = m_session.selection();
    const QString saved =
        m_session.settings().getSetting(QStringLiteral("LastNavTreeNodeKey"), QString());
    if (saved.isEmpty())
        return;
    record.lastNodeKey = saved;
    const NodeKey key = NodeKey::parse(saved);
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page)
        return; // any other shape leaves the window at the root
    m_menus.showOnly(NavMenus::levelMenus().at(static_cast<int>(*level) + 1));

    // The chain of ids from the cabinet down to the saved item; it ends at a missing row.
    QVector<NodeKey> chain{key};
    for (Level l = *level; l != Level::Cabinet; l = *parentLevel(l)) {
        const qint32 parent = m_session.items().parentOf(l, chain.first().id());
        if (parent < 0)
            return;
        chain.prepend(NodeKey::of(*parentLevel(l), parent));
    }
    // A start never asks for a password: a locked cabinet keeps its content hidden.
    if (!m_session.locks().isCabinetOpen(chain.first().id()))
        return;
    for (const NodeKey& step : chain) {
        if (!m_tree->selectNode(step.text()))
            return;
        m_tree->expandNode(step.text());
    }
    switch (*level) {
    case Level::Cabinet:
        showChildrenInList(Level::Drawer, key.id());
        break;
    case Level::Drawer:
        showChildrenInList(Level::Folder, key.id());
        break;
    case Level::Folder:
        showChildrenInList(Level::Document, key.id());
        break;
    default:
        showPagesInListView(key.id());
        break;
    }
    const NodeKey selected = NodeKey::parse(m_tree->selectedKey());
    if (!selected.isEmpty())
        setRecordFromKey(selected);
}

void NavWindow::savePlacement()
{
    int state = 0;
    if (isMinimized())
        state = 1;
    else if (isMaximized())
        state = 2;
    const QRect g = geometry();
    m_session.settings().savePlacement(kFormName,
                                       Placement{g.top(), g.left(), g.height(), g.width(), state});
}

void NavWindow::finishRun()
{
    if (m_finished)
        return;
    m_finished = true;
    savePlacement();
    Settings& settings = m_session.settings();
    // The node in view is the one to come back to; pages are no tree nodes.
    settings.saveSetting(QStringLiteral("LastNavTreeNodeKey"), m_tree->selectedKey());
    settings.sync();
    m_session.db().close();
}

void NavWindow::mnuFileExit()
{
    if (!m_prompter.confirm(QStringLiteral("Exit the Quillmere?")))
        return;
    finishRun();
    emit exitRequested();
}

void NavWindow::closeEvent(QCloseEvent* event)
{
    // Closing the window asks nothing; the other windows go with it.
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != this && w->isVisible())
            w->close();
    finishRun();
    event->accept();
}

bool NavWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto button = static_cast<QMouseEvent*>(event)->button();
        if (watched == m_list->viewport()) {
            onListMouseUp(button);
        } else if (watched == m_pages->viewport()) {
            m_contextSource = QStringLiteral("L2");
            if (button == Qt::RightButton && m_menus.menu(QStringLiteral("mnuPopupPage")))
                m_menus.menu(QStringLiteral("mnuPopupPage"))->exec(QCursor::pos());
        }
    } else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (watched == m_tree && key != Qt::Key_F5)
            m_contextSource = QStringLiteral("T");
        else if (watched == m_list)
            m_contextSource = QStringLiteral("L");
        else if (watched == m_pages)
            m_contextSource = QStringLiteral("L2");
        if (key == Qt::Key_Insert && (watched == m_tree || watched == m_list)) {
            onInsertKey(watched == m_tree);
            return true;
        }
    }
    if (event->type() == QEvent::MouseButtonRelease && m_splitter &&
        watched == m_splitter->handle(1))
        m_session.settings().saveSetting(QStringLiteral("tvwMainWidth"),
                                         QString::number(treeWidthTwips()));
    return QMainWindow::eventFilter(watched, event);
}

// ---- commands -----------------------------------------------------------------------------

DialogServices NavWindow::services()
{
    return DialogServices{m_session, m_prompter, m_choosers, this};
}

QString NavWindow::listSelectedKey() const
{
    const QListWidgetItem* item = m_list->currentItem();
    return item && item->isSelected() ? item->data(kKeyRole).toString() : QString();
}

NodeKey NavWindow::contextKey() const
{
    return NodeKey::parse(m_contextSource == QLatin1String("T") ? m_tree->selectedKey()
                                                                : listSelectedKey());
}

qint32 NavWindow::targetId(Level level) const
{
    const qint32 id = m_session.selection().idOf(level);
    if (id != -1)
        return id;
    const NodeKey key = contextKey();
    return key.level() == level ? key.id() : -1;
}

void NavWindow::restoreFocus()
{
    if (m_contextSource == QLatin1String("T"))
        m_tree->setFocus();
    else if (m_contextSource == QLatin1String("L"))
        (m_list->isVisible() ? static_cast<QWidget*>(m_list) : m_pages)->setFocus();
}

void NavWindow::newCabinet()
{
    guarded([this] {
        ItemDialog dialog(Level::Cabinet, services(), this);
        dialog.setAdd(-1);
        dialog.exec();
    });
    restoreFocus();
}

void NavWindow::addNewDocument(qint32 folderId, const NewDocumentResult& result)
{
    ItemFields fields;
    fields.name = result.name;
    fields.description = result.description;
    fields.dateOnDocument = ItemRules::dateOrZero(result.dateOnDocument);
    fields.amount = result.amount.toDouble();
    fields.hasAmount = true;
    const qint32 id = m_session.items().insertItem(Level::Document, folderId, fields);
    AddDocumentToNavTree(folderId, id, fields.name, fields.dateOnDocument);
}

void NavWindow::newChild(Level parentLevel)
{
    newChildOf(parentLevel, targetId(parentLevel));
}

void NavWindow::newChildOf(Level parentLevel, qint32 parentId)
{
    guarded([&] {
        const Level level = *childLevel(parentLevel);
        if (parentId < 0 || level == Level::Page)
            return;
        if (level == Level::Document) {
            ItemDialog dialog(Level::Document, services(), this, true);
            if (dialog.exec() == QDialog::Accepted && !dialog.newDocument().cancelled)
                addNewDocument(parentId, dialog.newDocument());
            return;
        }
        ItemDialog dialog(level, services(), this);
        dialog.setAdd(parentId);
        if (level == Level::Drawer)
            dialog.populateTemplates(
                m_templates.names(),
                [this](const QString& name, qint32 drawerId, ItemStore& items) {
                    return m_templates.applyDrawerTemplate(name, drawerId, items);
                });
        dialog.exec();
    });
    restoreFocus();
}

void NavWindow::newSibling(Level level)
{
    const Level parent = *parentLevel(level);
    const SelectionRecord& record = m_session.selection();
    qint32 parentId = -1;
    guarded([&] {
        if (record.idOf(level) != -1) {
            parentId = record.currentParentId;
        } else if (record.idOf(parent) != -1) {
            parentId = record.idOf(parent);
        } else {
            // The selected item of the control that spoke last: a sibling's parent, or the
            // parent itself.
            const NodeKey key = contextKey();
            if (key.level() == level)
                parentId = m_session.items().parentOf(level, key.id());
            else if (key.level() == parent)
                parentId = key.id();
        }
    });
    if (parentId >= 0)
        newChildOf(parent, parentId);
}

void NavWindow::properties(Level level, qint32 id)
{
    guarded([&] {
        const qint32 target = id >= 0 ? id : targetId(level);
        if (target < 0)
            return;
        if (level == Level::Cabinet &&
            !m_session.locks().openCabinet(target, m_choosers, m_prompter, this))
            return;
        ItemDialog dialog(level, services(), this);
        if (dialog.setEdit(target))
            dialog.exec();
    });
    restoreFocus();
}

void NavWindow::pageProperties()
{
    QStringList keys;
    for (const QTreeWidgetItem* item : m_pages->selectedItems())
        keys << item->data(0, kKeyRole).toString();
    if (keys.isEmpty())
        return;
    guarded([&] {
        PagePropertiesDialog dialog(m_session.db(), this);
        if (keys.size() == 1)
            dialog.Populate(NodeKey::parse(keys.first()).id());
        else
            dialog.populateMultiple(keys);
        dialog.exec();
    });
}

void NavWindow::repaginateDocument()
{
    guarded([this] {
        const qint32 id = targetId(Level::Document);
        const ItemRow doc = m_session.items().item(Level::Document, id);
        if (doc.id < 0)
            return;
        if (!m_prompter.confirm(QStringLiteral("Renumber all pages in '") + doc.name +
                                QStringLiteral("'?")))
            return;
        try {
            m_session.items().repaginateDocument(id, doc.name, m_progress);
        } catch (const StoreError&) {
            m_progress.end(); // the numbers stay as they were
            throw;
        }
        if (m_pages->isVisible())
            showPagesInListView(id);
    });
}

void NavWindow::renumberPage()
{
    QTreeWidgetItem* item = m_pages->currentItem();
    const NodeKey key = NodeKey::parse(item ? item->data(0, kKeyRole).toString() : QString());
    if (key.level() != Level::Page)
        return;
    // The list's text is "Page " and the number.
    PageNumberDialog dialog(item->text(0).mid(5).toInt(), this);
    dialog.exec();
    if (dialog.reply() == -1)
        return;
    guarded([&] {
        m_session.items().setPageNumber(key.id(), dialog.reply());
        item->setText(0, QStringLiteral("Page ") + QString::number(dialog.reply()));
    });
}

void NavWindow::drawerTemplates()
{
    TemplateEditor editor(m_templates, m_prompter, this);
    editor.exec();
}

void NavWindow::createSampleCabinet()
{
    SampleCabinets samples(m_session.home(), m_session.db(), this);
    if (!samples.ensureFile()) {
        m_prompter.tell(QStringLiteral("Missing file '") + samples.filePath() +
                        QStringLiteral("'."));
        return;
    }
    SampleDialog dialog(samples, m_prompter, m_choosers, this);
    dialog.exec();
}

void NavWindow::onListMouseUp(Qt::MouseButton button)
{
    m_contextSource = QStringLiteral("L");
    if (button != Qt::RightButton)
        return;
    guarded([this] {
        const NodeKey key = NodeKey::parse(listSelectedKey());
        const std::optional<Level> level = key.level();
        if (!level || *level == Level::Page)
            return;
        if (*level == Level::Cabinet && !m_session.locks().isCabinetOpen(key.id()))
            return;
        if (QMenu* popup = m_menus.menu(NavMenus::levelMenus().at(static_cast<int>(*level) + 1)))
            popup->exec(QCursor::pos());
    });
}

void NavWindow::onInsertKey(bool fromTree)
{
    const NodeKey key = NodeKey::parse(fromTree ? m_tree->selectedKey() : listSelectedKey());
    if (fromTree && key.isRoot()) {
        newCabinet();
        return;
    }
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page)
        return;
    // In the tree Insert adds a child of the node; in the list a sibling of the item.
    if (fromTree && *level != Level::Document)
        newChild(*level);
    else if (*level == Level::Cabinet)
        newCabinet();
    else if (!fromTree && *level == Level::Document)
        return; // a new page comes from the scanner, which is not here yet
    else
        newSibling(*level);
    (fromTree ? static_cast<QWidget*>(m_tree) : m_list)->setFocus();
}

} // namespace qmr
