#pragma once

#include <QListWidget>
#include <functional>

#include "core/level.h"
#include "core/nodekey.h"

namespace qmr {

struct ItemRow;

// lvwMain: the children of the container selected in the tree, as large icons with bare
// names, each item keyed like its tree node.
class ContainerList : public QListWidget
{
    Q_OBJECT
public:
    explicit ContainerList(QWidget* parent = nullptr);

    // The one list routine of every level: the list holds the items of `level` (cabinets for
    // the root, drawers for a cabinet ...), each with its bare name and its level's icon.
    void showItems(Level level, const QVector<ItemRow>& rows,
                   const std::function<QIcon(Level, qint32)>& iconFor);
    // Empties the list for the items of `level`; while none are there, it says how one is added.
    void clearFor(Level level);
    QListWidgetItem* addItem(const NodeKey& key, const QString& text, const QIcon& icon);
    // The selected item's key; empty when nothing is selected.
    NodeKey selectedKey() const;
    static NodeKey keyOf(const QListWidgetItem* item);
    QListWidgetItem* itemOf(const NodeKey& key) const;
    bool setItemText(const NodeKey& key, const QString& text);
    void removeItem(const NodeKey& key);

signals:
    // A double click or Enter: the selected item is to be opened in the tree. Nothing is
    // sent when no item is selected.
    void openRequested(const NodeKey& key);
    // A drag of the selected item is beginning; whoever runs drags takes it from here.
    void dragRequested();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace qmr
