#pragma once

#include <QDate>
#include <QString>
#include <QtGlobal>

namespace qmr {

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
};

} // namespace qmr
