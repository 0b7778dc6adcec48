#include "navigator/pagepane.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "core/viewsettings.h"
#include "filing/thumbnailcache.h"
#include "filing/thumbnailmaker.h"
#include "navigator/pagelistview.h"
#include "resources/buttonicons.h"
#include "resources/navicons.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"

namespace qmr {

namespace {

const QString kThumbnailView = QStringLiteral("thumbnail");
const QString kListView = QStringLiteral("list");

// A tile as the pane shows it: a faint frame marks its place on the white list, also while
// its picture is still being made or when none can be.
QIcon framedTile(const QImage& tile)
{
    const int side = ThumbnailMaker::kThumbSide;
    QImage framed(side, side, QImage::Format_RGB32);
    framed.fill(Qt::white);
    QPainter painter(&framed);
    if (!tile.isNull())
        painter.drawImage(0, 0, tile);
    painter.setPen(QColor(0xc8, 0xc8, 0xc8));
    painter.drawRect(0, 0, side - 1, side - 1);
    painter.end();
    return QIcon(QPixmap::fromImage(framed));
}

// The tile of a page whose file is gone: its place, crossed out, so that it is seen and not
// mistaken for a picture still being made.
QIcon missingTile()
{
    const int side = ThumbnailMaker::kThumbSide;
    QImage tile(side, side, QImage::Format_RGB32);
    tile.fill(QColor(0xf4, 0xf4, 0xf4));
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0xc6, 0x28, 0x28), 3));
    painter.drawLine(QPointF(side * 0.3, side * 0.3), QPointF(side * 0.7, side * 0.7));
    painter.drawLine(QPointF(side * 0.7, side * 0.3), QPointF(side * 0.3, side * 0.7));
    painter.end();
    return framedTile(tile);
}

QIcon drawnListIcon()
{
    QIcon icon;
    for (const int side : {16, 32}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter p(&pixmap);
        p.scale(side / 16.0, side / 16.0);
        p.setPen(Qt::NoPen);
        for (int row = 0; row < 4; ++row) {
            p.setBrush(QColor(0x15, 0x65, 0xc0));
            p.drawRect(QRectF(1, 1.5 + row * 3.5, 2.5, 2.5));
            p.setBrush(QColor(0x42, 0x42, 0x42));
            p.drawRect(QRectF(5, 2.25 + row * 3.5, 10, 1));
        }
        icon.addPixmap(pixmap);
    }
    return icon;
}

QPixmap arrowDown()
{
    QPixmap pixmap(11, 6);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x42, 0x42, 0x42));
    p.drawPolygon(QPolygonF({QPointF(0, 0), QPointF(11, 0), QPointF(5.5, 6)}));
    return pixmap;
}

} // namespace

PagePane::PagePane(NavIcons& icons, ViewSettings& view, const PagePaths& paths, QWidget* parent)
    : QWidget(parent), m_icons(icons), m_view(view), m_paths(paths),
      m_shortcutIcons(icons.icon(QStringLiteral("page")))
{
    setObjectName(QStringLiteral("fraPagePane"));
    m_thumbnails = new ThumbnailCache(paths.home().path(), {}, this);
    connect(m_thumbnails, &ThumbnailCache::ready, this, &PagePane::tileReady);
    buildControls();
    m_paging.setDisplayCount(m_view.displayCount());
    arrangeThumbPane();
}

PagePane::~PagePane() = default;

void PagePane::buildControls()
{
    m_list = new PageListView(this);
    connect(m_list, &PageListView::pageActivated, this, &PagePane::pageActivated);
    setFocusProxy(m_list);
    for (QObject* input : m_list->inputObjects())
        input->installEventFilter(this);

    auto button = [this](const char* name, const QString& caption, const QString& tip,
                         void (PagePane::*slot)()) {
        auto* b = new QPushButton(caption, this);
        b->setObjectName(QLatin1String(name));
        b->setToolTip(tip);
        // A click pages on; the focus stays in the list for the keys.
        b->setFocusPolicy(Qt::TabFocus);
        b->setAutoDefault(false);
        connect(b, &QPushButton::clicked, this, slot);
        return b;
    };
    m_cmdShowLess = button("cmdShowLess", tr("Show Less"), tr("Show one image fewer at a time"),
                           &PagePane::showLess);
    m_cmdShowMore = button("cmdShowMore", tr("Show More"), tr("Show one image more at a time"),
                           &PagePane::showMore);
    m_cmdFirst =
        button("cmdFirst", QStringLiteral("|<"), tr("First images (Home)"), &PagePane::first);
    m_cmdPrev =
        button("cmdPrev", QStringLiteral("<"), tr("Previous images (Page Up)"), &PagePane::prev);
    m_cmdNext =
        button("cmdNext", QStringLiteral(">"), tr("Next images (Page Down)"), &PagePane::next);
    m_cmdLast = button("cmdLast", QStringLiteral(">|"), tr("Last images (End)"), &PagePane::last);
    ButtonIcons::apply(this);
    // The paging buttons are narrow: a short caption of signs, not a word's width.
    for (QPushButton* b : {m_cmdFirst, m_cmdPrev, m_cmdNext, m_cmdLast})
        b->setFixedWidth(qMax(36, b->sizeHint().height() + 8));
    // Their captions are signs; a screen reader reads what they do.
    m_cmdFirst->setAccessibleName(tr("First page"));
    m_cmdPrev->setAccessibleName(tr("Previous page"));
    m_cmdNext->setAccessibleName(tr("Next page"));
    m_cmdLast->setAccessibleName(tr("Last page"));
    m_lblStatus = new QLabel(this);
    m_lblStatus->setObjectName(QStringLiteral("lblStatus"));
    m_lblStatus->setTextFormat(Qt::PlainText);

    auto* bar = new QHBoxLayout();
    bar->setSpacing(0);
    bar->addWidget(m_cmdShowLess);
    bar->addWidget(m_cmdShowMore);
    bar->addSpacing(6);
    bar->addWidget(m_lblStatus, 1);
    for (QPushButton* b : {m_cmdFirst, m_cmdPrev, m_cmdNext, m_cmdLast})
        bar->addWidget(b);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_list, 1);
    layout->addLayout(bar);

    // The view switch stands above the pane's right edge, in the window's button row.
    m_viewSwitch = new QWidget(this);
    m_viewSwitch->setObjectName(QStringLiteral("fraViewSwitch"));
    // Hidden with the pane, it keeps its room: the row it stands in must not change height.
    QSizePolicy policy = m_viewSwitch->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_viewSwitch->setSizePolicy(policy);
    auto tool = [this](const char* name, const QIcon& icon, const QString& tip,
                       const QString& view) {
        auto* b = new QToolButton(m_viewSwitch);
        b->setObjectName(QLatin1String(name));
        b->setIcon(icon);
        b->setIconSize(QSize(16, 16));
        b->setToolTip(tip);
        b->setAccessibleName(tip);
        b->setAutoRaise(true);
        b->setCheckable(true);
        b->setFocusPolicy(Qt::TabFocus);
        connect(b, &QToolButton::clicked, this, [this, view] { setThumbView(view); });
        return b;
    };
    m_imgThumbnail = tool("imgThumbnail",
                          QIcon::fromTheme(QStringLiteral("view-list-icons"),
                                           m_icons.icon(QStringLiteral("thumbnails"))),
                          tr("View thumbnails"), kThumbnailView);
    m_imgList =
        tool("imgList", QIcon::fromTheme(QStringLiteral("view-list-details"), drawnListIcon()),
             tr("View list"), kListView);
    m_imgArrowDown = new QLabel(m_viewSwitch);
    m_imgArrowDown->setObjectName(QStringLiteral("imgArrowDown"));
    m_imgArrowDown->setPixmap(arrowDown());
    auto* grid = new QGridLayout(m_viewSwitch);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(0);
    grid->addWidget(m_imgThumbnail, 1, 0);
    grid->addWidget(m_imgList, 1, 1);
    grid->setRowMinimumHeight(0, m_imgArrowDown->sizeHint().height());
    // Until a window places it elsewhere, it stands above the list.
    auto* top = new QHBoxLayout();
    top->addStretch(1);
    top->addWidget(m_viewSwitch);
    layout->insertLayout(0, top);
}

void PagePane::setVisible(bool visible)
{
    QWidget::setVisible(visible);
    if (m_viewSwitch && m_viewSwitch->parentWidget() != this)
        m_viewSwitch->setVisible(visible);
}

bool PagePane::thumbnailView() const
{
    return m_view.thumbView() != kListView;
}

void PagePane::arrangeThumbPane()
{
    const bool thumbnails = thumbnailView();
    m_imgThumbnail->setChecked(thumbnails);
    m_imgList->setChecked(!thumbnails);
    auto* grid = static_cast<QGridLayout*>(m_viewSwitch->layout());
    grid->removeWidget(m_imgArrowDown);
    grid->addWidget(m_imgArrowDown, 0, thumbnails ? 0 : 1, Qt::AlignHCenter | Qt::AlignBottom);
}

// ---- the document and its blocks ----------------------------------------------------------

void PagePane::showPages(qint32 documentId, const QVector<PageRow>& rows, bool found,
                         const QList<qint32>& matched)
{
    m_documentId = documentId;
    m_found = found;
    m_entries.clear();
    m_entries.reserve(rows.size());
    for (const PageRow& row : rows) {
        m_entries << PageEntry::fromRow(row, m_paths);
        m_entries.last().matched = matched.contains(row.id);
    }
    // The view settings dialog may have changed the block size since the last document.
    m_paging.setDisplayCount(m_view.displayCount());
    m_paging.load(m_entries.size());
    showPageBlock();
}

void PagePane::clearPages()
{
    m_thumbnails->cancel();
    m_list->clearPages();
    m_entries.clear();
    m_paging.clear();
    m_documentId = -1;
    m_found = false;
}

void PagePane::showPageBlock()
{
    if (m_busy)
        return;
    const QScopedValueRollback<bool> busy(m_busy, true);
    // Pictures still being made for the block that goes are no longer wanted.
    m_thumbnails->cancel();
    m_list->clearPages();
    m_lblStatus->setText(m_paging.statusText());
    if (m_paging.pageCount() == 0)
        return; // the paging buttons stay as they were

    const bool thumbnails = thumbnailView();
    m_list->setMode(thumbnails ? PageListView::Mode::Thumbnails : PageListView::Mode::List);
    // The list view shows the whole document; the buttons only move the numbers.
    const int from = thumbnails ? m_paging.viewFirst() : m_paging.viewBase();
    const int to = thumbnails ? m_paging.viewLast() : m_paging.pageCount();
    QVector<const PageEntry*> shown;
    shown.reserve(to - from + 1);
    for (int i = from; i <= to; ++i)
        shown << &m_entries.at(i - 1);
    // Sorted by number, so 11 comes before 100; equal numbers keep their order.
    std::stable_sort(shown.begin(), shown.end(), [](const PageEntry* a, const PageEntry* b) {
        return a->pageNumber < b->pageNumber;
    });

    QHash<qint32, QImage> atHand;
    if (thumbnails) {
        QVector<ThumbnailCache::Request> requests;
        for (const PageEntry* e : shown) {
            if (!e->shortcut)
                requests << ThumbnailCache::Request{e->pageId, e->pagePath, e->thumbPath};
            else if (ShortcutIcons::isPdf(e->pagePath))
                requests << ThumbnailCache::Request{e->pageId, e->pagePath, QString(), true};
        }
        atHand = m_thumbnails->request(requests);
    }
    const QIcon blank = framedTile(QImage());
    const QIcon& pageIcon = m_icons.icon(QStringLiteral("page"));
    for (const PageEntry* e : shown) {
        if (!thumbnails) {
            m_list->addPage(*e, e->listText(), pageIcon);
            continue;
        }
        QIcon icon = blank;
        if (const auto tile = atHand.constFind(e->pageId); tile != atHand.constEnd())
            icon = framedTile(*tile);
        else if (e->shortcut)
            icon = framedTile(m_shortcutIcons.tile(e->filename));
        m_list->addPage(*e, e->thumbnailText(), icon);
    }
    if (!thumbnails)
        m_list->fitColumns();

    m_cmdFirst->setEnabled(m_paging.canGoBack());
    m_cmdPrev->setEnabled(m_paging.canGoBack());
    m_cmdNext->setEnabled(m_paging.canGoForward());
    m_cmdLast->setEnabled(m_paging.canGoForward());
}

void PagePane::tileReady(qint32 pageId, const QImage& tile)
{
    if (!thumbnailView())
        return;
    if (!tile.isNull()) {
        m_list->setTile(pageId, framedTile(tile));
        return;
    }
    // A page whose file is gone (a copy that a crash cut short) says so; one whose picture
    // cannot be made keeps its blank tile. A PDF shortcut whose page cannot be drawn (any
    // more) has its type's icon.
    const auto entry = std::find_if(m_entries.cbegin(), m_entries.cend(),
                                    [pageId](const PageEntry& e) { return e.pageId == pageId; });
    if (entry != m_entries.cend() && entry->shortcut) {
        m_list->setTile(pageId, framedTile(m_shortcutIcons.tile(entry->filename)));
        return;
    }
    if (entry == m_entries.cend() || QFileInfo::exists(entry->pagePath))
        return;
    m_list->setTile(pageId, missingTile());
    m_list->setPageToolTip(pageId, tr("The file of this page is missing: %1").arg(entry->pagePath));
}

// ---- the buttons --------------------------------------------------------------------------

void PagePane::first()
{
    if (m_paging.first())
        showPageBlock();
}

void PagePane::prev()
{
    if (m_paging.prev())
        showPageBlock();
}

void PagePane::next()
{
    if (m_paging.next())
        showPageBlock();
}

void PagePane::last()
{
    if (m_paging.last())
        showPageBlock();
}

void PagePane::showLess()
{
    m_paging.showLess();
    m_view.setDisplayCount(m_paging.displayCount());
    showPageBlock();
}

void PagePane::showMore()
{
    m_paging.showMore();
    m_view.setDisplayCount(m_paging.displayCount());
    showPageBlock();
}

void PagePane::setThumbView(const QString& view)
{
    m_view.setThumbView(view);
    arrangeThumbPane();
    emit reloadRequested();
}

// ---- selection ----------------------------------------------------------------------------

QVector<qint32> PagePane::selectedPageIds() const
{
    return m_list->selectedPageIds();
}

qint32 PagePane::currentPageId() const
{
    return m_list->currentPageId();
}

qint32 PagePane::selectedPageId() const
{
    return m_list->selectedPageId();
}

int PagePane::indexOf(qint32 pageId) const
{
    for (int i = 0; i < m_entries.size(); ++i)
        if (m_entries.at(i).pageId == pageId)
            return i + 1;
    return 0;
}

bool PagePane::selectPage(qint32 pageId)
{
    if (!m_list->hasPage(pageId)) {
        const int index = indexOf(pageId);
        if (index == 0)
            return false;
        m_paging.showEntry(index);
        showPageBlock();
    }
    return m_list->selectPage(pageId);
}

void PagePane::updatePage(const PageRow& row)
{
    const int index = indexOf(row.id);
    if (index == 0)
        return;
    PageEntry& entry = m_entries[index - 1];
    entry = PageEntry::fromRow(row, m_paths);
    m_list->setPageText(row.id, thumbnailView() ? entry.thumbnailText() : entry.listText());
}

void PagePane::removePages(const QVector<qint32>& pageIds)
{
    const auto gone = std::remove_if(m_entries.begin(), m_entries.end(), [&](const PageEntry& e) {
        return pageIds.contains(e.pageId);
    });
    if (gone == m_entries.end())
        return;
    m_entries.erase(gone, m_entries.end());
    const int first = m_paging.viewFirst();
    m_paging.load(int(m_entries.size()));
    if (first > 1 && !m_entries.isEmpty())
        m_paging.showEntry(qMin(first, int(m_entries.size())));
    showPageBlock();
}

// ---- input --------------------------------------------------------------------------------

QList<QObject*> PagePane::inputObjects() const
{
    return m_list->inputObjects();
}

bool PagePane::isInput(const QObject* object) const
{
    return m_list->isInput(object);
}

bool PagePane::isViewport(const QObject* object) const
{
    return m_list->isViewport(object);
}

bool PagePane::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && m_list->isInput(watched)) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (pageKey(key->key(), key->modifiers()))
            return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool PagePane::pageKey(int key, Qt::KeyboardModifiers modifiers)
{
    const bool ctrl = modifiers & Qt::ControlModifier;
    const bool alt = modifiers & Qt::AltModifier;
    auto command = [this](const char* name) {
        emit commandRequested(QLatin1String(name));
        return true;
    };
    // Each paging key acts as its button does when that is enabled; otherwise the list moves
    // its own cursor.
    auto page = [](QPushButton* button) {
        if (!button->isEnabled())
            return false;
        button->click();
        return true;
    };
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (const qint32 id = selectedPageId(); id >= 0)
            emit pageActivated(id);
        return true;
    case Qt::Key_PageUp:
        return page(m_cmdPrev);
    case Qt::Key_PageDown:
        return page(m_cmdNext);
    case Qt::Key_End:
        return page(m_cmdLast);
    case Qt::Key_Home:
        return page(m_cmdFirst);
    case Qt::Key_A:
        if (!ctrl)
            return false;
        m_list->selectAllPages();
        return true;
    case Qt::Key_C:
        return ctrl && command("mnuPopupPageCopy");
    case Qt::Key_V:
        return ctrl && command("mnuPopupPagePaste");
    case Qt::Key_X:
        return ctrl && command("mnuPopupPageCut");
    // Properties and renumbering need no Ctrl.
    case Qt::Key_I:
        return !alt && command("mnuPopupPageProperties");
    case Qt::Key_R:
        return !alt && command("mnuPopupPageRenumber");
    default:
        return false;
    }
}

} // namespace qmr
