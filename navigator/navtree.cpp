#include "navigator/navtree.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include "core/nameorder.h"
#include "core/sortname.h"

namespace qmr {

namespace {

constexpr int kKeyRole = Qt::UserRole + 1;

// Children sort by text without regard to case, the way people read a list of names. The key,
// the name and the icon are members, read from there: reading a value of the item made a
// copy, at every comparison of a sort, and a large Found branch is made, sorted and taken
// away in a fraction of the time. Names are strings and icons are icons here; no other kind
// of value is ever set on a node.
class NavItem : public QTreeWidgetItem
{
public:
    NavItem(const QString& key, const QString& name, const QIcon& icon)
        : QTreeWidgetItem(UserType), m_key(key), m_name(name), m_icon(icon)
    {
        // No copy in the item's own values (an eighth of a large search's time): the item has
        // no column of its own until it is renamed, and the toolkit here reports a flag change
        // all the same. The tree test checks that report.
    }
    const QString& key() const { return m_key; }
    QVariant data(int column, int role) const override
    {
        if (role == kKeyRole)
            return m_key;
        if (column == 0 && (role == Qt::DisplayRole || role == Qt::EditRole))
            return m_name.text();
        if (column == 0 && role == Qt::DecorationRole)
            return m_icon;
        return QTreeWidgetItem::data(column, role);
    }
    // setText(), setIcon() and any write through the model come here; the base then tells
    // the view.
    void setData(int column, int role, const QVariant& value) override
    {
        if (column == 0 && (role == Qt::DisplayRole || role == Qt::EditRole))
            m_name = SortName(value.toString());
        else if (column == 0 && role == Qt::DecorationRole)
            m_icon = value.value<QIcon>();
        QTreeWidgetItem::setData(column, role, value);
    }
    bool operator<(const QTreeWidgetItem& other) const override
    {
        if (other.type() != UserType)
            return nameLess(text(0), other.text(0));
        const NavItem& o = static_cast<const NavItem&>(other);
        return m_name < o.m_name;
    }

private:
    const QString m_key;
    SortName m_name;
    QIcon m_icon;
};

} // namespace

NavTree::NavTree(QWidget* parent) : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("tvwMain"));
    setAccessibleName(tr("Cabinets"));
    setHeaderHidden(true);
    setColumnCount(1);
    setIconSize(QSize(16, 16));
    setUniformRowHeights(true);
    // Long names scroll sideways instead of being cut short.
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    // The column fits the names in view only. Fitted to a thousand rows (the default), each
    // change to a large tree shaped the text of all of them, twice: half of a search's time
    // with a large Found branch. A wider name scrolled into view widens the column.
    header()->setResizeContentsPrecision(0);
    setSortingEnabled(true);
    sortByColumn(0, Qt::AscendingOrder);
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
        ++m_expandSignals;
        emit expanding(keyOf(item));
    });
    connect(this, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item) { emit nodeDoubleClicked(keyOf(item)); });
}

QString NavTree::keyOf(const QTreeWidgetItem* item)
{
    // Every node is made here; the header item is the one other item of the widget.
    return item && item->type() == QTreeWidgetItem::UserType
               ? static_cast<const NavItem*>(item)->key()
               : QString();
}

QTreeWidgetItem* NavTree::addNode(const QString& parentKey, const QString& key, const QString& text,
                                  const QIcon& icon)
{
    if (key.isEmpty() || m_nodes.contains(key))
        return nullptr;
    QTreeWidgetItem* parent = nullptr;
    if (!parentKey.isEmpty()) {
        parent = m_nodes.value(parentKey);
        if (!parent)
            return nullptr;
    }
    auto* item = new NavItem(key, text, icon);
    if (parent)
        parent->addChild(item);
    else
        addTopLevelItem(item);
    m_nodes.insert(key, item);
    return item;
}

int NavTree::addNodes(const QVector<NewNode>& nodes)
{
    // New nodes hang below each other outside the tree, where adding costs nothing; each
    // group then joins its parent in the tree at once.
    QVector<QTreeWidgetItem*> topLevel;
    QHash<QTreeWidgetItem*, QList<QTreeWidgetItem*>> joining;
    QVector<QTreeWidgetItem*> expanded;
    m_nodes.reserve(m_nodes.size() + nodes.size());
    int added = 0;
    // Siblings come one after another, so the parent looked up last is mostly the next one's.
    QString lastParentKey;
    QTreeWidgetItem* lastParent = nullptr;
    for (const NewNode& n : nodes) {
        if (n.key.isEmpty())
            continue;
        QTreeWidgetItem* parent = nullptr;
        if (!n.parentKey.isEmpty()) {
            if (n.parentKey != lastParentKey) {
                lastParentKey = n.parentKey;
                lastParent = m_nodes.value(n.parentKey);
            }
            parent = lastParent;
            if (!parent)
                continue;
        }
        QTreeWidgetItem*& slot = m_nodes[n.key];
        if (slot)
            continue; // the key is taken
        auto* item = new NavItem(n.key, n.text, n.icon);
        slot = item;
        if (n.key == lastParentKey)
            lastParent = item;
        item->setFlags(n.flags);
        if (!parent)
            topLevel << item;
        else if (parent->treeWidget())
            joining[parent] << item;
        else
            parent->addChild(item);
        if (n.expanded)
            expanded << item;
        ++added;
    }
    for (auto it = joining.begin(); it != joining.end(); ++it)
        it.key()->addChildren(it.value());
    addTopLevelItems(QList<QTreeWidgetItem*>(topLevel.begin(), topLevel.end()));
    for (QTreeWidgetItem* item : std::as_const(expanded))
        item->setExpanded(true);
    return added;
}

namespace {

int countNodes(const QTreeWidgetItem* item)
{
    int count = 1;
    for (int i = 0; i < item->childCount(); ++i)
        count += countNodes(item->child(i));
    return count;
}

void forgetEach(QHash<QString, QTreeWidgetItem*>& nodes, const QTreeWidgetItem* item)
{
    for (int i = 0; i < item->childCount(); ++i)
        forgetEach(nodes, item->child(i));
    nodes.remove(NavTree::keyOf(item));
}

// The nodes at and below `node`, leaving out `gone` and its own.
void keepEach(QHash<QString, QTreeWidgetItem*>& kept, QTreeWidgetItem* node,
              const QTreeWidgetItem* gone)
{
    if (node == gone)
        return;
    kept.insert(NavTree::keyOf(node), node);
    for (int i = 0; i < node->childCount(); ++i)
        keepEach(kept, node->child(i), gone);
}

} // namespace

void NavTree::forget(QTreeWidgetItem* item)
{
    // Fewer than half of the nodes are looked up by key. When most of the tree goes (a Found
    // branch of thousands), the index is made again from the nodes that stay, which costs less
    // than a look-up for each key that goes.
    const int count = countNodes(item);
    if (count * 2 < m_nodes.size()) {
        forgetEach(m_nodes, item);
        return;
    }
    QHash<QString, QTreeWidgetItem*> kept;
    kept.reserve(m_nodes.size() - count);
    for (int i = 0; i < topLevelItemCount(); ++i)
        keepEach(kept, topLevelItem(i), item);
    m_nodes = std::move(kept);
}

void NavTree::removeNode(const QString& key)
{
    QTreeWidgetItem* item = m_nodes.value(key);
    if (!item)
        return;
    forget(item);
    delete item;
}

namespace {

void collectExpanded(QTreeWidgetItem* item, QList<QTreeWidgetItem*>& open)
{
    if (item->isExpanded())
        open << item;
    for (int i = 0; i < item->childCount(); ++i)
        collectExpanded(item->child(i), open);
}

} // namespace

bool NavTree::moveNode(const QString& key, const QString& newParentKey)
{
    QTreeWidgetItem* item = m_nodes.value(key);
    QTreeWidgetItem* parent = m_nodes.value(newParentKey);
    if (!item || !parent)
        return false;
    for (const QTreeWidgetItem* p = parent; p; p = p->parent())
        if (p == item)
            return false;
    // Taking a node out forgets which of its nodes were open; they open again below the new
    // parent, without a second fill (the expansion signal is held back).
    QList<QTreeWidgetItem*> open;
    collectExpanded(item, open);
    const bool wasCurrent = currentItem() == item;
    QTreeWidgetItem* oldParent = item->parent();
    if (oldParent)
        oldParent->removeChild(item);
    else
        takeTopLevelItem(indexOfTopLevelItem(item));
    parent->addChild(item);
    {
        const QSignalBlocker quiet(this);
        for (QTreeWidgetItem* node : std::as_const(open))
            node->setExpanded(true);
    }
    if (wasCurrent)
        setCurrentItem(item);
    return true;
}

void NavTree::clearNodes()
{
    m_nodes.clear();
    clear();
}

bool NavTree::setNodeText(const QString& key, const QString& text)
{
    QTreeWidgetItem* item = m_nodes.value(key);
    if (!item)
        return false;
    item->setText(0, text);
    return true;
}

QString NavTree::nodeText(const QString& key) const
{
    const QTreeWidgetItem* item = m_nodes.value(key);
    return item ? item->text(0) : QString();
}

bool NavTree::setCurrentNode(const QString& key)
{
    QTreeWidgetItem* item = m_nodes.value(key);
    if (!item)
        return false;
    setCurrentItem(item);
    return true;
}

bool NavTree::setNodeEditable(const QString& key, bool editable)
{
    QTreeWidgetItem* item = m_nodes.value(key);
    if (!item)
        return false;
    item->setFlags(editable ? item->flags() | Qt::ItemIsEditable
                            : item->flags() & ~Qt::ItemIsEditable);
    return true;
}

bool NavTree::editNode(const QString& key)
{
    QTreeWidgetItem* item = m_nodes.value(key);
    if (!item)
        return false;
    editItem(item, 0);
    return true;
}

QString NavTree::selectedKey() const
{
    return keyOf(currentItem());
}

QString NavTree::parentKey(const QString& key) const
{
    const QTreeWidgetItem* item = m_nodes.value(key);
    return item ? keyOf(item->parent()) : QString();
}

bool NavTree::selectNode(const QString& key)
{
    QTreeWidgetItem* item = m_nodes.value(key);
    if (!item)
        return false;
    setCurrentItem(item);
    scrollToItem(item);
    return true;
}

bool NavTree::expandNode(const QString& key)
{
    QTreeWidgetItem* item = m_nodes.value(key);
    if (!item)
        return false;
    const int before = m_expandSignals;
    item->setExpanded(true);
    if (m_expandSignals == before) // already open, or nothing below it yet
        emit expanding(key);
    return true;
}

void NavTree::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    const int across = horizontalScrollBar()->value();
    QTreeWidget::scrollTo(index, hint);
    horizontalScrollBar()->setValue(across);
}

void NavTree::mousePressEvent(QMouseEvent* event)
{
    // A right click selects nothing: its menu is for the node that stays selected.
    if (event->button() == Qt::RightButton) {
        event->accept();
        return;
    }
    QTreeWidget::mousePressEvent(event);
}

void NavTree::mouseReleaseEvent(QMouseEvent* event)
{
    QTreeWidget::mouseReleaseEvent(event);
    const Qt::MouseButton button = event->button();
    if (button == Qt::LeftButton) {
        QTreeWidgetItem* item = itemAt(event->position().toPoint());
        if (item && item == currentItem())
            emit nodeClicked(keyOf(item));
    }
    emit contextRequested(button);
}

void NavTree::startDrag(Qt::DropActions)
{
    emit dragRequested();
}

void NavTree::keyPressEvent(QKeyEvent* event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentItem()) {
        emit enterPressed(selectedKey());
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

} // namespace qmr
