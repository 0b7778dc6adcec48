#pragma once

#include <QDate>
#include <QString>
#include <QVector>
#include <QtGlobal>

#include "core/level.h"

namespace qmr {

// An item that a command made below an existing one, to be shown once the store holds it.
struct CreatedItem
{
    Level level;
    qint32 parentId; // ignored for cabinets
    qint32 id;
    QString name;
    QDate date; // documents: the date on the document, null for none
};

// What dialogs and feature commands may ask of the main window, level by level. The window
// implements it; nobody below the navigator includes the window itself.
class NavigatorCallbacks
{
public:
    virtual ~NavigatorCallbacks() = default;

    // Adds the node of a new item below its parent and selects it; a new cabinet also lists
    // its drawers.
    virtual void itemAdded(const CreatedItem& item) = 0;
    // Writes a new name (and a document's date) to the tree node, its found copy and the
    // list item, each where it exists; for a page, the text of its item in the page pane.
    virtual void itemRenamed(Level level, qint32 id, const QString& name, const QDate& date) = 0;
    // Takes the item's node, its found copy and its list item away.
    virtual void itemRemoved(Level level, qint32 id) = 0;
    // Selects the container's node, expands it and lists its children (pages for a document).
    virtual void showChildren(Level level, qint32 id) = 0;
    // Shows the document's pages anew when the pane shows that document; `selectPageId`
    // is selected afterwards when it is there.
    virtual void refreshPages(qint32 documentId, qint32 selectPageId = -1) = 0;
    // A cabinet was opened with its password: its node is rebuilt and filled as a click
    // fills it.
    virtual void cabinetOpened(qint32 cabinetId) = 0;

    // Adds each item in order.
    void announce(const QVector<CreatedItem>& items);
};

} // namespace qmr
