#pragma once

#include "core/level.h"

#include <QDate>
#include <QVector>
#include <QString>
#include <QtGlobal>

namespace qmr {

// An item that a command made below an existing one, to be shown once the store holds it.
struct CreatedItem
{
    Level level;
    qint32 parentId;
    qint32 id;
    QString name;
    QDate date;
};

// What dialogs and modules may ask of the main window. The window implements it; nobody
// below the navigator includes the window itself.
class NavigatorCallbacks
{
public:
    virtual ~NavigatorCallbacks() = default;

    virtual void AddCabinetToNavTree(qint32 cabinetId, const QString& name) = 0;
    virtual void AddDrawerToNavTree(qint32 cabinetId, qint32 drawerId, const QString& name) = 0;
    virtual void AddFolderToNavTree(qint32 drawerId, qint32 folderId, const QString& name) = 0;
    // `dateOnDocument` is null for none.
    virtual void AddDocumentToNavTree(qint32 folderId, qint32 documentId, const QString& name,
                                      const QDate& dateOnDocument) = 0;

    virtual void UpdateCabinetName(qint32 cabinetId, const QString& name) = 0;
    virtual void UpdateDrawerName(qint32 drawerId, const QString& name) = 0;
    virtual void UpdateFolderName(qint32 folderId, const QString& name) = 0;
    virtual void UpdateDocumentName(qint32 documentId, const QString& name,
                                    const QDate& dateOnDocument) = 0;

    // Selects the cabinet's node, expands it and lists its drawers.
    virtual void ShowDrawersInListView(qint32 cabinetId) = 0;
    // Removes and re-adds a cabinet node after it was unlocked, so that it fills anew.
    virtual void RebuildCabinetNode(qint32 cabinetId, const QString& name) = 0;

    // Adds each item through the Add routine of its level, in order.
    void announce(const QVector<CreatedItem>& items);
};

} // namespace qmr
