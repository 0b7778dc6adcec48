#include "navigator/treefiller.h"

#include "navigator/containerlist.h"
#include "navigator/navtree.h"
#include "resources/navicons.h"
#include "store/cipher.h"
#include "store/itemrules.h"
#include "store/session.h"
#include "templates/samplecabinets.h"

namespace qmr {

namespace {
const QString kRoot = QStringLiteral("ROOT");
}

TreeFiller::TreeFiller(NavTree& tree, ContainerList& list, NavIcons& icons, Session& session)
    : m_tree(tree), m_list(list), m_icons(icons), m_session(session)
{
}

QString TreeFiller::getCabinetIcon(qint32 cabinetId) const
{
    return m_session.locks().isCabinetOpen(cabinetId) ? QStringLiteral("cabinet")
                                                      : QStringLiteral("locked");
}

QIcon TreeFiller::iconFor(Level level, qint32 id) const
{
    if (level == Level::Cabinet)
        return m_icons.icon(getCabinetIcon(id));
    return m_icons.icon(QLatin1String(levelInfo(level).icon));
}

QString TreeFiller::nodeText(Level level, const QString& name, const QDate& date)
{
    if (level == Level::Document && date.isValid())
        return name + QStringLiteral(" (") + ItemRules::displayDate(date) + QLatin1Char(')');
    return name;
}

QString TreeFiller::loadNavTree(NavigatorCallbacks* navigator)
{
    m_list.clearFor(Level::Cabinet);
    m_tree.clearNodes();
    m_tree.addNode(QString(), kRoot, tr("File Cabinets"), m_icons.icon(QStringLiteral("root")));
    const QVector<ItemRow> cabinets = m_session.items().children(Level::Cabinet, -1);
    if (cabinets.isEmpty()) {
        // A store without cabinets always gets one, so that the root is never bare.
        SampleCabinets samples(m_session.home(), m_session.db(), navigator);
        samples.ensureFile();
        const QString name = QStringLiteral("Generic File Cabinet");
        samples.createSampleCabinet(name);
        return samples.unusedLinesMessage(name);
    }
    for (const ItemRow& cabinet : cabinets) {
        const NodeKey key = NodeKey::of(Level::Cabinet, cabinet.id);
        const QIcon icon = iconFor(Level::Cabinet, cabinet.id);
        m_tree.addNode(kRoot, key.text(), cabinet.name, icon);
        m_list.addItem(key, cabinet.name, icon);
        // A cabinet with a password stands bare until it is opened, even if it was open last time.
        if (decryptText(cabinet.password, Cipher::key()).isEmpty())
            addChildNodes(Level::Cabinet, cabinet.id);
    }
    return QString();
}

void TreeFiller::addChildNodes(Level parentLevel, qint32 parentId)
{
    const Level level = *childLevel(parentLevel);
    const QString parentKey = NodeKey::of(parentLevel, parentId).text();
    if (!m_tree.hasNode(parentKey))
        return;
    for (const ItemRow& row : m_session.items().children(level, parentId))
        m_tree.addNode(parentKey, NodeKey::of(level, row.id).text(),
                       nodeText(level, row.name, row.date), iconFor(level, row.id));
}

void TreeFiller::addFoldersToDrawerNodes(qint32 cabinetId)
{
    for (const ItemRow& drawer : m_session.items().children(Level::Drawer, cabinetId))
        addChildNodes(Level::Drawer, drawer.id);
}

void TreeFiller::addDocumentsToFolderNodes(qint32 drawerId)
{
    for (const ItemRow& folder : m_session.items().children(Level::Folder, drawerId))
        addChildNodes(Level::Folder, folder.id);
}

void TreeFiller::fillOnClick(Level level, qint32 id)
{
    if (level == Level::Cabinet) {
        addChildNodes(Level::Cabinet, id);
        addFoldersToDrawerNodes(id);
    } else if (level == Level::Drawer) {
        addDocumentsToFolderNodes(id);
    }
}

void TreeFiller::onExpand(const NodeKey& key)
{
    if (key.level() == Level::Cabinet)
        addFoldersToDrawerNodes(key.id());
    else if (key.level() == Level::Drawer)
        addDocumentsToFolderNodes(key.id());
}

std::optional<Level> TreeFiller::restoreLastNode(const QString& saved, bool* reached)
{
    *reached = false;
    const NodeKey key = NodeKey::parse(saved);
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page)
        return std::nullopt; // any other shape leaves the window at the root
    // The chain of ids from the cabinet down to the saved item; it ends at a missing row.
    QVector<NodeKey> chain{key};
    for (Level l = *level; l != Level::Cabinet; l = *parentLevel(l)) {
        const qint32 parent = m_session.items().parentOf(l, chain.first().id());
        if (parent < 0)
            return level;
        chain.prepend(NodeKey::of(*parentLevel(l), parent));
    }
    // A start never asks for a password: a locked cabinet keeps its content hidden.
    if (!m_session.locks().isCabinetOpen(chain.first().id()))
        return level;
    for (const NodeKey& step : chain) {
        if (!m_tree.selectNode(step.text()))
            return level;
        m_tree.expandNode(step.text());
    }
    // The cabinet counts as opened in this run: opening it again later (a click, a drop on it)
    // would rebuild its node and close the nodes just opened below it.
    m_session.locks().recordOpen(chain.first().id());
    *reached = true;
    return level;
}

bool TreeFiller::addItemNode(const CreatedItem& item)
{
    const QString parentKey = item.level == Level::Cabinet
                                  ? kRoot
                                  : NodeKey::of(*parentLevel(item.level), item.parentId).text();
    const QString key = NodeKey::of(item.level, item.id).text();
    if (!m_tree.addNode(parentKey, key, nodeText(item.level, item.name, item.date),
                        iconFor(item.level, item.id)))
        return false;
    m_tree.selectNode(key);
    return true;
}

void TreeFiller::renameItem(Level level, qint32 id, const QString& name, const QDate& date)
{
    // Each of the three places may be missing; the others are written all the same.
    const QString text = nodeText(level, name, date);
    m_tree.setNodeText(NodeKey::of(level, id).text(), text);
    m_tree.setNodeText(NodeKey::found(level, id).text(), text);
    m_list.setItemText(NodeKey::of(level, id), text);
}

void TreeFiller::removeItem(Level level, qint32 id)
{
    m_tree.removeNode(NodeKey::of(level, id).text());
    m_tree.removeNode(NodeKey::found(level, id).text());
    m_list.removeItem(NodeKey::of(level, id));
    m_list.removeItem(NodeKey::found(level, id));
}

void TreeFiller::rebuildCabinetNode(qint32 cabinetId)
{
    const ItemRow cabinet = m_session.items().item(Level::Cabinet, cabinetId);
    const QString key = NodeKey::of(Level::Cabinet, cabinetId).text();
    m_tree.removeNode(key);
    if (cabinet.id < 0)
        return;
    if (!m_tree.addNode(kRoot, key, cabinet.name, m_icons.icon(QStringLiteral("cabinet"))))
        return;
    // Filled as a click fills it, whichever command opened it.
    fillOnClick(Level::Cabinet, cabinetId);
    m_tree.selectNode(key);
    m_tree.expandNode(key);
}

} // namespace qmr
