#pragma once

#include <QTreeWidget>

#include "store/pagestore.h"

namespace qmr {

class NavIcons;
class PagePaths;

// lvwThumb: the pages of one document, keyed "PAG" + id.
class PagePane : public QTreeWidget
{
    Q_OBJECT
public:
    PagePane(NavIcons& icons, QWidget* parent = nullptr);

    // Shows the rows as they come (the store gives them in page order).
    void showPages(qint32 documentId, const QVector<PageRow>& pages, const PagePaths& paths);
    qint32 documentId() const { return m_documentId; }
    // Forgets the document; the pane is hidden by its owner.
    void clearPages();
    QVector<qint32> selectedPageIds() const;
    qint32 currentPageId() const;
    bool selectPage(qint32 pageId);
    void setPageText(qint32 pageId, const QString& text);
    static qint32 pageIdOf(const QTreeWidgetItem* item);

private:
    NavIcons& m_icons;
    qint32 m_documentId = -1;
};

} // namespace qmr
