#pragma once

#include <QHash>
#include <QStackedWidget>

class QAbstractItemView;
class QListView;
class QModelIndex;
class QStandardItem;
class QStandardItemModel;
class QTreeView;

namespace qmr {

struct PageEntry;

// lvwThumb: the pages of the pane, as a block of thumbnails or as a list with columns. The
// two views show one model and share one selection; items are keyed "PAG" + id.
class PageListView : public QStackedWidget
{
    Q_OBJECT
public:
    enum class Mode { Thumbnails, List };

    explicit PageListView(QWidget* parent = nullptr);

    Mode mode() const { return m_mode; }
    void setMode(Mode mode);
    QAbstractItemView* currentView() const;

    void clearPages();
    // Adds an item; `icon` is the tile in the thumbnail view and the small page icon in the
    // list view.
    void addPage(const PageEntry& entry, const QString& text, const QIcon& icon);
    void setTile(qint32 pageId, const QIcon& tile);
    void setPageText(qint32 pageId, const QString& text);
    void setPageToolTip(qint32 pageId, const QString& text);
    // Makes each column of the list as wide as its heading and its widest value.
    void fitColumns();

    int count() const;
    QString textAt(int row) const;
    QString columnText(int row, int column) const;
    qint32 pageIdAt(int row) const;
    // The page holds the words searched for: it is marked.
    bool matchedAt(int row) const;
    QIcon iconAt(int row) const;
    qint32 pageIdOf(const QModelIndex& index) const;
    // The page under a point of the current view's viewport; -1 for none.
    qint32 pageIdAt(const QPoint& viewportPos) const;
    bool hasPage(qint32 pageId) const { return m_rows.contains(pageId); }

    // The selected pages in the order shown.
    QVector<qint32> selectedPageIds() const;
    // The page with the focus, selected or not; -1 for none.
    qint32 currentPageId() const;
    // The page a command on "the selected page" means: the current one when it is selected,
    // else the first selected; -1 for none.
    qint32 selectedPageId() const;
    bool selectPage(qint32 pageId);
    void selectAllPages();

    // Both views and their viewports: what a filter watching the page list must watch.
    QList<QObject*> inputObjects() const;
    bool isInput(const QObject* object) const;
    bool isViewport(const QObject* object) const;

signals:
    // A double click on a page.
    void pageActivated(qint32 pageId);
    // A drag of the selected pages is beginning; whoever runs drags takes it from here.
    void dragRequested();

private:
    QStandardItem* itemOf(qint32 pageId) const;

    QStandardItemModel* m_model;
    QListView* m_thumbs;
    QTreeView* m_details;
    Mode m_mode = Mode::Thumbnails;
    QHash<qint32, int> m_rows;
};

} // namespace qmr
