#pragma once

#include <QListWidget>

#include "core/level.h"
#include "core/nodekey.h"

namespace qmr {

// lvwMain: the children of the container selected in the tree, as large icons with bare
// names, each item keyed like its tree node.
class ContainerList : public QListWidget
{
    Q_OBJECT
public:
    explicit ContainerList(QWidget* parent = nullptr);

    QListWidgetItem* addItem(const NodeKey& key, const QString& text, const QIcon& icon);
    // The selected item's key; empty when nothing is selected.
    NodeKey selectedKey() const;
    static NodeKey keyOf(const QListWidgetItem* item);
    QListWidgetItem* itemOf(const NodeKey& key) const;
    bool setItemText(const NodeKey& key, const QString& text);
    void removeItem(const NodeKey& key);
};

} // namespace qmr
