#include "navigator/pagelistview.h"

#include <QHeaderView>
#include <QListView>
#include <QStandardItemModel>
#include <QTreeView>

#include "core/nodekey.h"
#include "filing/pageentry.h"
#include "filing/thumbnailmaker.h"
#include "navigator/emptyhint.h"

namespace qmr {

namespace {

constexpr int kKeyRole = Qt::UserRole + 1;
constexpr int kIdRole = Qt::UserRole + 2;
constexpr int kMatchedRole = Qt::UserRole + 3;
constexpr int kColumns = 6;
// Page #, Filename, Size, Scan date, Page ID; the sort column stays hidden.
constexpr int kSortColumn = 5;

// The two views hand the start of a drag to the page list, which hands it on.
template <class View> class DragHandingView : public View
{
public:
    explicit DragHandingView(PageListView* owner) : View(owner), m_owner(owner) {}

protected:
    void startDrag(Qt::DropActions) override { emit m_owner->dragRequested(); }
    void paintEvent(QPaintEvent* event) override
    {
        View::paintEvent(event);
        EmptyHint::paint(this);
    }

private:
    PageListView* m_owner;
};

} // namespace

PageListView::PageListView(QWidget* parent)
    : QStackedWidget(parent), m_model(new QStandardItemModel(0, kColumns, this)),
      m_thumbs(new DragHandingView<QListView>(this)),
      m_details(new DragHandingView<QTreeView>(this))
{
    setObjectName(QStringLiteral("lvwThumb"));
    m_model->setHorizontalHeaderLabels({tr("Page #"), tr("Filename"), tr("Size"), tr("Scan date"),
                                        tr("Page ID"), QStringLiteral("Hdn1")});

    const int side = ThumbnailMaker::kThumbSide;
    m_thumbs->setObjectName(QStringLiteral("lvwThumbIcons"));
    m_thumbs->setAccessibleName(tr("Pages"));
    m_thumbs->setModel(m_model);
    m_thumbs->setViewMode(QListView::IconMode);
    m_thumbs->setIconSize(QSize(side, side));
    m_thumbs->setGridSize(QSize(side + 28, side + 2 * fontMetrics().height() + 14));
    m_thumbs->setMovement(QListView::Static);
    m_thumbs->setResizeMode(QListView::Adjust);
    m_thumbs->setUniformItemSizes(true);
    m_thumbs->setWordWrap(true);
    m_thumbs->setTextElideMode(Qt::ElideMiddle);
    m_thumbs->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_thumbs->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_thumbs->setEditTriggers(QAbstractItemView::NoEditTriggers);

    m_details->setObjectName(QStringLiteral("lvwThumbDetails"));
    m_details->setAccessibleName(tr("Pages"));
    m_details->setModel(m_model);
    // One selection for both views: what is selected does not depend on how it is shown.
    QItemSelectionModel* own = m_details->selectionModel();
    m_details->setSelectionModel(m_thumbs->selectionModel());
    delete own;
    m_details->setRootIsDecorated(false);
    m_details->setUniformRowHeights(true);
    m_details->setAllColumnsShowFocus(true);
    m_details->setItemsExpandable(false);
    m_details->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_details->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_details->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_details->setIconSize(QSize(16, 16));
    m_details->header()->setStretchLastSection(false);
    m_details->setColumnHidden(kSortColumn, true);

    for (QAbstractItemView* view :
         {static_cast<QAbstractItemView*>(m_thumbs), static_cast<QAbstractItemView*>(m_details)})
        EmptyHint::set(view, tr("No pages yet. Scan one with Scan Page, drop image files here, "
                                "or paste pages with Ctrl+V."));
    addWidget(m_thumbs);
    addWidget(m_details);
    setFocusProxy(m_thumbs);
    for (QAbstractItemView* view :
         {static_cast<QAbstractItemView*>(m_thumbs), static_cast<QAbstractItemView*>(m_details)})
        connect(view, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) {
            const qint32 id = pageIdOf(index);
            if (id >= 0)
                emit pageActivated(id);
        });
}

void PageListView::setMode(Mode mode)
{
    m_mode = mode;
    QAbstractItemView* view = currentView();
    const bool focused = hasFocus();
    setCurrentWidget(view);
    setFocusProxy(view);
    if (focused)
        view->setFocus();
}

QAbstractItemView* PageListView::currentView() const
{
    if (m_mode == Mode::Thumbnails)
        return m_thumbs;
    return m_details;
}

void PageListView::clearPages()
{
    m_model->removeRows(0, m_model->rowCount());
    m_rows.clear();
}

void PageListView::addPage(const PageEntry& entry, const QString& text, const QIcon& icon)
{
    QList<QStandardItem*> row;
    auto* first = new QStandardItem(icon, text);
    first->setData(NodeKey::of(Level::Page, entry.pageId).text(), kKeyRole);
    first->setData(entry.pageId, kIdRole);
    first->setToolTip(entry.filename);
    row << first;
    for (const QString& sub : {entry.filename, entry.fileSize, entry.scanDate,
                               QString::number(entry.pageId), entry.sortKey()})
        row << new QStandardItem(sub);
    for (QStandardItem* item : row)
        item->setEditable(false);
    if (entry.matched) {
        // As a highlighter marks a line on paper: a tint and bold text, in both views.
        first->setToolTip(entry.filename + QLatin1Char('\n') +
                          tr("The words searched for are on this page."));
        first->setData(true, kMatchedRole);
        for (QStandardItem* item : row) {
            QFont bold = item->font();
            bold.setBold(true);
            item->setFont(bold);
            item->setBackground(QColor(255, 236, 140));
            item->setForeground(QColor(Qt::black));
        }
    }
    m_rows.insert(entry.pageId, m_model->rowCount());
    m_model->appendRow(row);
}

QStandardItem* PageListView::itemOf(qint32 pageId) const
{
    const auto found = m_rows.constFind(pageId);
    return found == m_rows.constEnd() ? nullptr : m_model->item(*found, 0);
}

void PageListView::setTile(qint32 pageId, const QIcon& tile)
{
    if (QStandardItem* item = itemOf(pageId))
        item->setIcon(tile);
}

void PageListView::setPageText(qint32 pageId, const QString& text)
{
    QStandardItem* item = itemOf(pageId);
    if (!item)
        return;
    item->setText(text);
    // A number grown by a digit must not be cut short.
    if (m_mode == Mode::List)
        m_details->setColumnWidth(
            0, qMax(m_details->columnWidth(0), m_details->sizeHintForIndex(item->index()).width()));
}

void PageListView::setPageToolTip(qint32 pageId, const QString& text)
{
    if (QStandardItem* item = itemOf(pageId))
        item->setToolTip(text);
}

void PageListView::fitColumns()
{
    // The widest value of a column is found by its text alone (every row's icon is the same),
    // then measured as the view draws it; a count of rows a view would look at on its own
    // could miss the last numbers of a long document.
    m_details->ensurePolished();
    const QFontMetrics metrics(m_details->font());
    const int rows = m_model->rowCount();
    for (int column = 0; column < kSortColumn; ++column) {
        int widestRow = -1;
        int widest = -1;
        for (int row = 0; row < rows; ++row) {
            const int advance = metrics.horizontalAdvance(m_model->item(row, column)->text());
            if (advance > widest) {
                widest = advance;
                widestRow = row;
            }
        }
        int width = m_details->header()->sectionSizeHint(column);
        if (widestRow >= 0)
            width =
                qMax(width, m_details->sizeHintForIndex(m_model->index(widestRow, column)).width());
        m_details->setColumnWidth(column, width);
    }
}

int PageListView::count() const
{
    return m_model->rowCount();
}

QString PageListView::textAt(int row) const
{
    return columnText(row, 0);
}

QString PageListView::columnText(int row, int column) const
{
    const QStandardItem* item = m_model->item(row, column);
    return item ? item->text() : QString();
}

bool PageListView::matchedAt(int row) const
{
    const QStandardItem* item = m_model->item(row, 0);
    return item && item->data(kMatchedRole).toBool();
}

qint32 PageListView::pageIdAt(int row) const
{
    const QStandardItem* item = m_model->item(row, 0);
    return item ? item->data(kIdRole).toInt() : -1;
}

QIcon PageListView::iconAt(int row) const
{
    const QStandardItem* item = m_model->item(row, 0);
    return item ? item->icon() : QIcon();
}

qint32 PageListView::pageIdOf(const QModelIndex& index) const
{
    return index.isValid() ? pageIdAt(index.row()) : -1;
}

qint32 PageListView::pageIdAt(const QPoint& viewportPos) const
{
    return pageIdOf(currentView()->indexAt(viewportPos));
}

QVector<qint32> PageListView::selectedPageIds() const
{
    QVector<qint32> ids;
    const QItemSelectionModel* selection = m_thumbs->selectionModel();
    for (int row = 0; row < m_model->rowCount(); ++row)
        if (selection->isSelected(m_model->index(row, 0)))
            ids << pageIdAt(row);
    return ids;
}

qint32 PageListView::currentPageId() const
{
    return pageIdOf(m_thumbs->selectionModel()->currentIndex());
}

qint32 PageListView::selectedPageId() const
{
    const QItemSelectionModel* selection = m_thumbs->selectionModel();
    const QModelIndex current = selection->currentIndex();
    if (current.isValid() && selection->isSelected(m_model->index(current.row(), 0)))
        return pageIdOf(current);
    const QVector<qint32> ids = selectedPageIds();
    return ids.isEmpty() ? -1 : ids.first();
}

bool PageListView::selectPage(qint32 pageId)
{
    const auto found = m_rows.constFind(pageId);
    if (found == m_rows.constEnd())
        return false;
    const QModelIndex index = m_model->index(*found, 0);
    currentView()->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                                QItemSelectionModel::Rows);
    currentView()->scrollTo(index);
    return true;
}

void PageListView::selectAllPages()
{
    currentView()->selectAll();
}

QList<QObject*> PageListView::inputObjects() const
{
    return {m_thumbs, m_thumbs->viewport(), m_details, m_details->viewport()};
}

bool PageListView::isInput(const QObject* object) const
{
    return object == m_thumbs || object == m_details;
}

bool PageListView::isViewport(const QObject* object) const
{
    return object == m_thumbs->viewport() || object == m_details->viewport();
}

} // namespace qmr
