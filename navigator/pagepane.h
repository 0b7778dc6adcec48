#pragma once

#include <QVector>
#include <QWidget>

#include "filing/pageentry.h"
#include "filing/pagepaging.h"
#include "navigator/shortcuticons.h"

class QLabel;
class QPushButton;
class QToolButton;

namespace qmr {

class NavIcons;
class PageListView;
class PagePaths;
class ThumbnailCache;
class ViewSettings;
struct PageRow;

// The page pane: the pages of one document in lvwThumb, a block of DisplayCount thumbnails
// at a time or all of them as a list, with the paging buttons, the status text and the view
// switch. It keeps the document's pages in memory, so paging never reads the store.
class PagePane : public QWidget
{
    Q_OBJECT
public:
    PagePane(NavIcons& icons, ViewSettings& view, const PagePaths& paths,
             QWidget* parent = nullptr);
    ~PagePane() override;

    // Keeps the rows (in page order) and shows the first block. `found`: the document of a
    // found node, shown with the found set's page conditions; `matched`: its pages that hold
    // the words on the pages searched for, marked.
    void showPages(qint32 documentId, const QVector<PageRow>& rows, bool found = false,
                   const QList<qint32>& matched = {});
    // Forgets the document; the pane is hidden by its owner.
    void clearPages();
    qint32 documentId() const { return m_documentId; }
    bool isFound() const { return m_found; }
    const QVector<PageEntry>& entries() const { return m_entries; }
    const PagePaging& paging() const { return m_paging; }

    // Fills lvwThumb for the block in view and the view chosen, and sets the status and the
    // paging buttons. Thumbnails at hand show at once, the rest as they are made.
    void showPageBlock();
    // Marks the view in force under the view switch.
    void arrangeThumbPane();

    // The paging buttons.
    void first();
    void prev();
    void next();
    void last();
    void showLess();
    void showMore();
    // "thumbnail" or "list": saved, and the document is read again at its first block.
    void setThumbView(const QString& view);

    PageListView* list() const { return m_list; }
    // imgThumbnail, imgList and imgArrowDown, for the window to place above the pane; they
    // show and hide with it.
    QWidget* viewSwitch() const { return m_viewSwitch; }
    ThumbnailCache& thumbnails() { return *m_thumbnails; }

    QVector<qint32> selectedPageIds() const;
    qint32 currentPageId() const;
    qint32 selectedPageId() const;
    // Selects a page, moving to its block when it is not in view.
    bool selectPage(qint32 pageId);
    // A page row changed (its number): its entry and its item follow; the order stays until
    // the pane is shown again.
    void updatePage(const PageRow& row);
    // Pages that left the document: their entries and items go, and the block in view is
    // filled again from where it stood.
    void removePages(const QVector<qint32>& pageIds);

    // What a filter watching the page list must watch, and what it sees.
    QList<QObject*> inputObjects() const;
    bool isInput(const QObject* object) const;
    bool isViewport(const QObject* object) const;

    void setVisible(bool visible) override;

signals:
    // A double click or Enter on a page.
    void pageActivated(qint32 pageId);
    // A key of the pane that stands for a menu entry.
    void commandRequested(const QString& menuEntry);
    // The view changed: the document must be read again.
    void reloadRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    bool pageKey(int key, Qt::KeyboardModifiers modifiers);
    void tileReady(qint32 pageId, const QImage& tile);
    bool thumbnailView() const;
    int indexOf(qint32 pageId) const;

    NavIcons& m_icons;
    ViewSettings& m_view;
    const PagePaths& m_paths;
    PageListView* m_list = nullptr;
    ThumbnailCache* m_thumbnails = nullptr;
    ShortcutIcons m_shortcutIcons;
    QWidget* m_viewSwitch = nullptr;
    QToolButton* m_imgThumbnail = nullptr;
    QToolButton* m_imgList = nullptr;
    QLabel* m_imgArrowDown = nullptr;
    QPushButton* m_cmdShowLess = nullptr;
    QPushButton* m_cmdShowMore = nullptr;
    QLabel* m_lblStatus = nullptr;
    QPushButton* m_cmdFirst = nullptr;
    QPushButton* m_cmdPrev = nullptr;
    QPushButton* m_cmdNext = nullptr;
    QPushButton* m_cmdLast = nullptr;

    QVector<PageEntry> m_entries;
    PagePaging m_paging;
    qint32 m_documentId = -1;
    bool m_found = false;
    bool m_busy = false;
};

} // namespace qmr
