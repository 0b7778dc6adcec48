#include "navigator/pagepane.h"

#include <QHeaderView>
#include <QLocale>

#include "core/nodekey.h"
#include "navigator/navicons.h"
#include "store/itemrules.h"
#include "store/pagepaths.h"

namespace qmr {

namespace {
constexpr int kKeyRole = Qt::UserRole + 1;
}

PagePane::PagePane(NavIcons& icons, QWidget* parent) : QTreeWidget(parent), m_icons(icons)
{
    setObjectName(QStringLiteral("lvwThumb"));
    setRootIsDecorated(false);
    setHeaderLabels({QStringLiteral("Page #"), QStringLiteral("Filename"), QStringLiteral("Size"),
                     QStringLiteral("Scan date")});
    header()->setSectionResizeMode(1, QHeaderView::Stretch);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
}

void PagePane::showPages(qint32 documentId, const QVector<PageRow>& pages, const PagePaths& paths)
{
    clear();
    m_documentId = documentId;
    for (const PageRow& page : pages) {
        auto* item = new QTreeWidgetItem(this);
        item->setText(0, QStringLiteral("Page ") + QString::number(page.pageNumber));
        item->setText(1, paths.pagePath(page.id, page.filename));
        item->setText(2, QLocale().toString(page.fileSize));
        item->setText(3, ItemRules::displayDate(page.scanDate));
        item->setData(0, kKeyRole, NodeKey::of(Level::Page, page.id).text());
        item->setIcon(0, m_icons.icon(QStringLiteral("page")));
    }
}

void PagePane::clearPages()
{
    clear();
    m_documentId = -1;
}

qint32 PagePane::pageIdOf(const QTreeWidgetItem* item)
{
    if (!item)
        return -1;
    const NodeKey key = NodeKey::parse(item->data(0, kKeyRole).toString());
    return key.level() == Level::Page ? key.id() : -1;
}

QVector<qint32> PagePane::selectedPageIds() const
{
    QVector<qint32> ids;
    for (int i = 0; i < topLevelItemCount(); ++i)
        if (topLevelItem(i)->isSelected())
            ids << pageIdOf(topLevelItem(i));
    return ids;
}

qint32 PagePane::currentPageId() const
{
    return pageIdOf(currentItem());
}

bool PagePane::selectPage(qint32 pageId)
{
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = topLevelItem(i);
        if (pageIdOf(item) == pageId) {
            setCurrentItem(item);
            scrollToItem(item);
            return true;
        }
    }
    return false;
}

void PagePane::setPageText(qint32 pageId, const QString& text)
{
    for (int i = 0; i < topLevelItemCount(); ++i)
        if (pageIdOf(topLevelItem(i)) == pageId)
            topLevelItem(i)->setText(0, text);
}

} // namespace qmr
