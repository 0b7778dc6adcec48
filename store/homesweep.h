#pragma once

#include <QObject>
#include <QVector>

#include "store/pagepaths.h"
#include "store/storefiles.h"

class QThread;

namespace qmr {

class Database;

// The tidying after a start, in the background: files aside that a writer left when its run
// ended, and page or thumbnail files whose page has no row, are removed; pages whose row has
// no file are found and named in the log. The directories are read on a thread of their own;
// each removal is decided on this object's thread just before it is made, against the rows
// as they stand then, so a page added meanwhile keeps its file.
class HomeSweep : public QObject
{
    Q_OBJECT
public:
    // `runStart` (seconds since the epoch): files aside from before it are leftovers; later
    // ones may be copies of this run under way.
    HomeSweep(Database& db, PagePaths paths, qint64 runStart, QObject* parent = nullptr);
    ~HomeSweep() override;

    void start();
    bool isRunning() const { return m_running; }
    int removed() const { return m_removed; }
    // Pages at their computed place whose file is missing.
    const QVector<qint32>& missingPages() const { return m_missing; }

signals:
    void finished();

private:
    void listed(const QVector<StoreFiles::Entry>& entries);
    void sweepSome();
    bool hasRow(const StoreFiles::Entry& entry);
    void done();

    Database& m_db;
    PagePaths m_paths;
    qint64 m_runStart;
    bool m_running = false;
    QThread* m_thread = nullptr;
    QVector<StoreFiles::Entry> m_candidates;
    int m_next = 0;
    int m_removed = 0;
    QVector<qint32> m_missing;
};

} // namespace qmr
