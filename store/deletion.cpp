#include "store/deletion.h"

#include <QCoreApplication>
#include <QFile>

#include "core/progress.h"
#include "store/database.h"
#include "store/itemtable.h"
#include "store/pagepaths.h"

namespace qmr {

namespace {

// What the progress says at the two steps of the rows, by level.
struct LevelSteps
{
    const char* title;
    const char* rowsBelow; // before the rows below the item go
    const char* item;      // before the item's own row goes
    int extra;             // steps beyond one per page
};

const LevelSteps& stepsOf(Level level)
{
    static const LevelSteps steps[] = {
        {"Delete cabinet", "Delete drawers in cabinet", "Delete cabinet", 3},
        {"Delete drawer", "Delete drawer", "Delete drawer", 3},
        {"Delete folder", "Delete folder", "Delete folder", 2},
        {"Delete document", "Delete pages", "Delete document", 2},
        {"Delete page", "Delete page file", "Delete page record", 3},
    };
    return steps[static_cast<int>(level)];
}

// The condition on the rows of `level` that picks those below the item of `root`, whose id is
// the one "?": "DocumentId IN (SELECT DocumentId FROM Document WHERE FolderId = ?)".
QString below(Level level, Level root)
{
    const ItemTable& t = ItemTable::of(level);
    const Level parent = *parentLevel(level);
    if (parent == root)
        return t.parent() + QStringLiteral(" = ?");
    const ItemTable& p = ItemTable::of(parent);
    return QStringLiteral("%1 IN (SELECT %2 FROM %3 WHERE %4)")
        .arg(t.parent(), p.id(), p.name(), below(parent, root));
}

} // namespace

QString Deletion::progressTitle(Level level)
{
    return QLatin1String(stepsOf(level).title);
}

QString Deletion::pagesBelow(Level level)
{
    return level == Level::Page ? QStringLiteral("PageId = ?") : below(Level::Page, level);
}

int Deletion::pageCount(Level level, qint32 id) const
{
    return m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM Page WHERE ") + pagesBelow(level), {id})
        .toInt();
}

int Deletion::progressMaximum(Level level, qint32 id, int count) const
{
    if (level == Level::Page)
        return stepsOf(level).extra * count;
    return pageCount(level, id) + stepsOf(level).extra;
}

QVector<Deletion::PageFiles> Deletion::pagesOf(const QString& condition, qint32 id) const
{
    const Recordset rs =
        m_db.openRecordset(QStringLiteral("SELECT PageId, Filename, ShortcutYN FROM Page WHERE ") +
                               condition + QStringLiteral(" ORDER BY PageId"),
                           {id});
    QVector<PageFiles> pages;
    pages.reserve(rs.recordCount());
    for (int i = 0; i < rs.recordCount(); ++i)
        pages << PageFiles{rs.integer(i, QStringLiteral("PageId")),
                           rs.text(i, QStringLiteral("Filename")),
                           rs.text(i, QStringLiteral("ShortcutYN")) == QLatin1String("Y")};
    return pages;
}

void Deletion::deletePageFiles(const PageFiles& page) const
{
    if (page.shortcut)
        return;
    // A file that is gone or cannot go is left as it is; the row goes regardless.
    QFile::remove(m_paths.pagePath(page.id, page.filename));
    QFile::remove(m_paths.thumbPath(page.id, page.filename));
}

void Deletion::deleteFilesBelow(Level level, qint32 id, Progress& progress) const
{
    for (const PageFiles& page : pagesOf(pagesBelow(level), id)) {
        progress.step(QCoreApplication::translate("qmr::Deletion", "Delete page files"));
        deletePageFiles(page);
    }
}

void Deletion::deleteRowsBelow(Level level, qint32 id)
{
    // From the bottom up, so that no row is ever left without its parent.
    for (Level l = Level::Page; l != level; l = *parentLevel(l))
        m_db.execute(
            QStringLiteral("DELETE FROM %1 WHERE %2").arg(ItemTable::of(l).name(), below(l, level)),
            {id});
}

void Deletion::deleteItem(Level level, qint32 id, Progress& progress)
{
    if (level == Level::Page) {
        deletePages({id}, progress);
        return;
    }
    const LevelSteps& steps = stepsOf(level);
    // Files first, while the rows still tell where they are; a cabinet goes drawer by drawer.
    if (level == Level::Cabinet) {
        const Recordset drawers = m_db.openRecordset(
            QStringLiteral("SELECT DrawerId FROM Drawer WHERE CabinetId = ? ORDER BY DrawerId"),
            {id});
        for (int i = 0; i < drawers.recordCount(); ++i) {
            progress.step(QCoreApplication::translate("qmr::Deletion", "Delete drawer"));
            deleteFilesBelow(Level::Drawer, drawers.integer(i, QStringLiteral("DrawerId")),
                             progress);
        }
    } else {
        deleteFilesBelow(level, id, progress);
    }
    Database::Transaction tx(m_db);
    progress.step(QLatin1String(steps.rowsBelow));
    deleteRowsBelow(level, id);
    progress.step(QLatin1String(steps.item));
    const ItemTable& t = ItemTable::of(level);
    m_db.execute(QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(t.name(), t.id()), {id});
    tx.commit();
}

void Deletion::deletePages(const QVector<qint32>& pageIds, Progress& progress)
{
    QVector<PageFiles> pages;
    for (const qint32 id : pageIds)
        pages += pagesOf(pagesBelow(Level::Page), id);
    for (const PageFiles& page : pages) {
        progress.step(QCoreApplication::translate("qmr::Deletion", "Delete page file"));
        deletePageFiles(page);
    }
    Database::Transaction tx(m_db);
    for (const PageFiles& page : pages) {
        progress.step(QCoreApplication::translate("qmr::Deletion", "Delete page record"));
        m_db.execute(QStringLiteral("DELETE FROM Page WHERE PageId = ?"), {page.id});
    }
    tx.commit();
}

} // namespace qmr
