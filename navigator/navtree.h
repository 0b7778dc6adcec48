#pragma once

#include <QHash>
#include <QTreeWidget>

namespace qmr {

// tvwMain: a tree whose nodes are found by key. It refuses a second node with a key it
// holds, keeps every node's children sorted by text, and reports an expansion made from
// code as well as one made by the user.
class NavTree : public QTreeWidget
{
    Q_OBJECT
public:
    explicit NavTree(QWidget* parent = nullptr);

    QTreeWidgetItem* node(const QString& key) const { return m_nodes.value(key); }
    bool hasNode(const QString& key) const { return m_nodes.contains(key); }
    // The node's name as shown; empty for a key the tree does not hold.
    QString nodeText(const QString& key) const;
    // The key of the node at a point of the viewport; empty on the free room.
    QString keyAt(const QPoint& pos) const { return keyOf(itemAt(pos)); }
    // Adds below `parentKey` (top level when empty). Returns nullptr, and changes nothing,
    // when the key is taken or the parent is missing.
    QTreeWidgetItem* addNode(const QString& parentKey, const QString& key, const QString& text,
                             const QIcon& icon);
    // A node for addNodes().
    struct NewNode
    {
        QString parentKey; // "" for the top level
        QString key;
        QString text;
        QIcon icon;
        bool expanded = false;
        Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled |
                              Qt::ItemIsDropEnabled;
    };
    // Adds many nodes at once, parents before their children, leaving out each one that
    // addNode() would refuse. Thousands of nodes join the tree in one step per parent that
    // was there before, instead of one step each. Returns how many were added.
    int addNodes(const QVector<NewNode>& nodes);
    void removeNode(const QString& key);
    // Puts a node below another with its children, each as open or closed as it was. False,
    // and nothing changed, when either is missing or the node would go below itself.
    bool moveNode(const QString& key, const QString& newParentKey);
    void clearNodes();
    bool setNodeText(const QString& key, const QString& text);

    static QString keyOf(const QTreeWidgetItem* item);
    QString selectedKey() const;
    QString parentKey(const QString& key) const;
    bool selectNode(const QString& key);
    // Makes a node the current one, without the explicit scroll of selectNode(): the pointer
    // is over it.
    bool setCurrentNode(const QString& key);
    bool setNodeEditable(const QString& key, bool editable);
    // Opens the in-place editor on a node's name.
    bool editNode(const QString& key);
    // Expands a node and reports it through expanding(), whether or not it has children.
    bool expandNode(const QString& key);
    int nodeCount() const { return m_nodes.size(); }
    // The width that shows the widest name in view whole.
    int namesWidth() const { return sizeHintForColumn(0); }
    // Keeps the sideways position: a wide name must not push the tree out of view.
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

signals:
    void expanding(const QString& key);
    // A node clicked with the left button, and the right-button release.
    void nodeClicked(const QString& key);
    void contextRequested(Qt::MouseButton button);
    void enterPressed(const QString& key);
    void nodeDoubleClicked(const QString& key);
    // A drag of the selected node is beginning; whoever runs drags takes it from here.
    void dragRequested();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;

private:
    void forget(QTreeWidgetItem* item);

    QHash<QString, QTreeWidgetItem*> m_nodes;
    int m_expandSignals = 0;
};

} // namespace qmr
