#include "navigator/containerlist.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include "navigator/emptyhint.h"
#include "store/itemstore.h"

namespace qmr {

namespace {
constexpr int kKeyRole = Qt::UserRole + 1;
}

ContainerList::ContainerList(QWidget* parent) : QListWidget(parent)
{
    setObjectName(QStringLiteral("lvwMain"));
    setAccessibleName(tr("Contents"));
    setViewMode(QListView::IconMode);
    setIconSize(QSize(32, 32));
    setGridSize(QSize(130, 84));
    setResizeMode(QListView::Adjust);
    setMovement(QListView::Static);
    setWordWrap(true);
    setSortingEnabled(true);
}

void ContainerList::showItems(Level level, const QVector<ItemRow>& rows,
                              const std::function<QIcon(Level, qint32)>& iconFor)
{
    clearFor(level);
    // The list shows bare names: unlike the tree, no date on a document.
    for (const ItemRow& row : rows)
        addItem(NodeKey::of(level, row.id), row.name, iconFor(level, row.id));
}

void ContainerList::clearFor(Level level)
{
    clear();
    QString hint;
    switch (level) {
    case Level::Cabinet:
        hint = tr("No file cabinets yet. Add one with New File Cabinet in the Cabinets menu.");
        break;
    case Level::Drawer:
        hint = tr("No drawers yet. Add one with New Drawer in the Cabinet menu.");
        break;
    case Level::Folder:
        hint = tr("No folders yet. Add one with New Folder in the Drawer menu.");
        break;
    case Level::Document:
        hint = tr("No documents yet. Add one with New Document in the Folder menu, or drop "
                  "image files here.");
        break;
    case Level::Page:
        break;
    }
    EmptyHint::set(this, hint);
}

void ContainerList::paintEvent(QPaintEvent* event)
{
    QListWidget::paintEvent(event);
    EmptyHint::paint(this);
}

void ContainerList::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (const NodeKey key = selectedKey(); !key.isEmpty())
            emit openRequested(key);
        event->accept();
        return;
    }
    QListWidget::keyPressEvent(event);
}

void ContainerList::mouseDoubleClickEvent(QMouseEvent* event)
{
    QListWidget::mouseDoubleClickEvent(event);
    // A double click opens the selected item, the one the first click chose.
    if (event->button() == Qt::LeftButton && itemAt(event->position().toPoint()))
        if (const NodeKey key = selectedKey(); !key.isEmpty())
            emit openRequested(key);
}

void ContainerList::startDrag(Qt::DropActions)
{
    emit dragRequested();
}

QListWidgetItem* ContainerList::addItem(const NodeKey& key, const QString& text, const QIcon& icon)
{
    auto* item = new QListWidgetItem(icon, text);
    item->setData(kKeyRole, key.text());
    QListWidget::addItem(item);
    return item;
}

NodeKey ContainerList::keyOf(const QListWidgetItem* item)
{
    return item ? NodeKey::parse(item->data(kKeyRole).toString()) : NodeKey();
}

NodeKey ContainerList::selectedKey() const
{
    const QListWidgetItem* item = currentItem();
    return item && item->isSelected() ? keyOf(item) : NodeKey();
}

QListWidgetItem* ContainerList::itemOf(const NodeKey& key) const
{
    for (int i = 0; i < count(); ++i)
        if (keyOf(item(i)) == key)
            return item(i);
    return nullptr;
}

bool ContainerList::setItemText(const NodeKey& key, const QString& text)
{
    QListWidgetItem* found = itemOf(key);
    if (found)
        found->setText(text);
    return found != nullptr;
}

void ContainerList::removeItem(const NodeKey& key)
{
    delete itemOf(key);
}

} // namespace qmr
