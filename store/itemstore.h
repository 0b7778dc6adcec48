#pragma once

#include <QDate>
#include <QString>
#include <QVector>
#include <optional>

#include "core/level.h"
#include "store/itemfields.h"

namespace qmr {

class Database;

struct ItemRow
{
    qint32 id = -1;
    QString name;
    QDate date;       // documents: DateOnDocument
    QString password; // cabinets: the stored (enciphered) password, "" for Null
};

// An item as the exchange files carry it: its name and what the file system cannot hold, with
// a Null kept apart from an empty value.
struct ItemManifest
{
    qint32 id = -1;
    QString name;
    std::optional<QString> description;
    std::optional<QDate> dateOnDocument; // documents
    std::optional<double> amount;        // documents
};

// The item queries that the navigator, templates and samples share: one routine per kind of
// work, driven by the level's table.
class ItemStore
{
public:
    explicit ItemStore(Database& db) : m_db(db) {}

    // The children of `parentId` on `level` (all cabinets for Level::Cabinet), by name.
    QVector<ItemRow> children(Level level, qint32 parentId) const;
    // One item, or an item with id -1 when there is no such row.
    ItemRow item(Level level, qint32 id) const;
    // The parent id of an item, -1 when the row is gone.
    qint32 parentOf(Level level, qint32 id) const;
    qint32 cabinetOfDrawer(qint32 drawerId) const { return parentOf(Level::Drawer, drawerId); }
    qint32 drawerOfFolder(qint32 folderId) const { return parentOf(Level::Folder, folderId); }
    qint32 folderOfDocument(qint32 documentId) const
    {
        return parentOf(Level::Document, documentId);
    }
    qint32 documentOfPage(qint32 pageId) const { return parentOf(Level::Page, pageId); }

    // The editable fields of one item; nothing when the row is gone.
    std::optional<ItemFields> fields(Level level, qint32 id) const;
    // Inserts an item with its fields below `parentId`; returns the new id.
    qint32 insertItem(Level level, qint32 parentId, const ItemFields& fields);
    void updateItem(Level level, qint32 id, const ItemFields& fields);
    // Puts a drawer, folder or document below another parent of the level above; its own
    // children go with it. Names are not tested: a move may make two of one name.
    void moveItem(Level level, qint32 id, qint32 newParentId);
    // Whether another item of the same parent (any cabinet, for cabinets) has this name,
    // without regard to case whatever the column declares (a store made elsewhere may
    // compare with case); `exceptId` is the item being edited, or -1.
    bool nameTaken(Level level, qint32 parentId, const QString& name, qint32 exceptId) const;
    // Whether any other item of the level in the whole store has this name, whatever its
    // parent (the container list's test when a label is edited there).
    bool nameTakenAnywhere(Level level, const QString& name, qint32 exceptId) const;
    // Writes a new name only; throws StoreError when it is too long for the column.
    void renameItem(Level level, qint32 id, const QString& name);
    // Throws StoreError naming the column when a field is too wide for it.
    static void checkWidths(Level level, const ItemFields& fields);

    // Inserts a bare item (cabinets get the stored form of the empty password); returns its id.
    qint32 insertItem(Level level, qint32 parentId, const QString& name);
    int count(Level level) const;

    // Inserts a drawer, folder or document with its name alone, every other column Null (as
    // an import makes them: an exchange file may bring the rest); returns its id.
    qint32 insertNamed(Level level, qint32 parentId, const QString& name);
    // The first child of `parentId` (any cabinet, for cabinets) with this name, without regard
    // to case; -1 for none.
    qint32 childNamed(Level level, qint32 parentId, const QString& name) const;
    // One item's manifest (id -1 when the row is gone), and the children's, by name.
    ItemManifest manifest(Level level, qint32 id) const;
    QVector<ItemManifest> childManifests(Level level, qint32 parentId) const;
    // Writes what a manifest carries: the description of any level, and for a document also
    // its amount and, when there is one, its date.
    void setDescription(Level level, qint32 id, const QString& description);
    void setDocumentManifest(qint32 documentId, const std::optional<QDate>& dateOnDocument,
                             const QString& description, double amount);
    bool cabinetNameExists(const QString& name) const;

private:
    Database& m_db;
};

} // namespace qmr
