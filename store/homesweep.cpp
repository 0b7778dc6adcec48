#include "store/homesweep.h"

#include <QFile>
#include <QMetaObject>
#include <QDeadlineTimer>
#include <QSet>
#include <QThread>
#include <QTimer>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "core/workerpriority.h"
#include "store/database.h"
#include "store/storeerror.h"
#include "store/storelog.h"

namespace qmr {

namespace {

// Removals per turn of the event loop: the window answers between them.
constexpr int kPerTurn = 200;

// Missing pages named in the log; the rest are counted.
constexpr int kNamed = 20;

// How long the end of a run waits for a listing still under way.
constexpr int kWaitMs = 2000;

} // namespace

HomeSweep::HomeSweep(Database& db, PagePaths paths, qint64 runStart, QObject* parent)
    : QObject(parent), m_db(db), m_paths(std::move(paths)), m_runStart(runStart)
{
}

HomeSweep::~HomeSweep()
{
    if (!m_thread)
        return;
    // The listing reads directories only; a home on a disk that stopped answering is left
    // to it rather than holding up the end of the run.
    if (m_thread->wait(QDeadlineTimer(kWaitMs))) {
        delete m_thread;
    } else {
        qCWarning(lcStore) << "The listing of the page files did not end; it is left behind";
        m_thread->setParent(nullptr);
    }
}

void HomeSweep::start()
{
    if (m_running)
        return;
    m_running = true;
    m_removed = 0;
    m_missing.clear();
    const PagePaths paths = m_paths;
    auto entries = std::make_shared<QVector<StoreFiles::Entry>>();
    m_thread = QThread::create([paths, entries] {
        WorkerPriority::lowerCurrentThread();
        *entries = StoreFiles(paths).list();
    });
    // Delivered on this object's thread, and not at all once this object is gone.
    connect(m_thread, &QThread::finished, this, [this, entries] {
        m_thread->deleteLater();
        m_thread = nullptr;
        listed(*entries);
    });
    m_thread->start();
}

void HomeSweep::listed(const QVector<StoreFiles::Entry>& entries)
{
    QSet<qint32> computed;
    QSet<QString> stored;
    try {
        const Recordset rs =
            m_db.openRecordset(QStringLiteral("SELECT PageId, Filename, ShortcutYN FROM Page"));
        QSet<qint32> withFile;
        for (const StoreFiles::Entry& entry : entries)
            if (entry.kind == StoreFiles::Entry::Kind::Page)
                withFile.insert(entry.id);
        for (int i = 0; i < rs.recordCount(); ++i) {
            const qint32 id = rs.integer(i, QStringLiteral("PageId"));
            const QString name = rs.text(i, QStringLiteral("Filename"));
            if (!name.isEmpty()) {
                stored.insert(name);
                continue;
            }
            computed.insert(id);
            if (!withFile.contains(id) && rs.text(i, QStringLiteral("ShortcutYN")) != "Y")
                m_missing << id;
        }
    } catch (const StoreError& e) {
        qCWarning(lcStore) << "The page files were not tidied:" << e.message();
        done();
        return;
    }
    if (!m_missing.isEmpty()) {
        QStringList named;
        for (int i = 0; i < m_missing.size() && i < kNamed; ++i)
            named << QString::number(m_missing.at(i));
        qCWarning(lcStore).noquote()
            << "Pages without their file:" << m_missing.size() << "-"
            << named.join(QStringLiteral(", "))
            << (m_missing.size() > kNamed ? QStringLiteral("...") : QString());
    }
    m_candidates.clear();
    for (const StoreFiles::Entry& entry : entries) {
        switch (entry.kind) {
        case StoreFiles::Entry::Kind::Leftover:
            if (entry.modified < m_runStart)
                m_candidates << entry;
            break;
        case StoreFiles::Entry::Kind::Page:
            if (!computed.contains(entry.id) && !stored.contains(entry.path))
                m_candidates << entry;
            break;
        case StoreFiles::Entry::Kind::Thumbnail:
            if (!computed.contains(entry.id))
                m_candidates << entry;
            break;
        }
    }
    m_next = 0;
    sweepSome();
}

bool HomeSweep::hasRow(const StoreFiles::Entry& entry)
{
    if (entry.kind == StoreFiles::Entry::Kind::Leftover)
        return false;
    // Asked again now: a page may have been added at this id since the rows were read.
    const QVariant found = m_db.scalar(
        QStringLiteral("SELECT count(*) FROM Page WHERE (PageId = ? AND (Filename IS NULL OR "
                       "Filename = '')) OR Filename = ?"),
        {entry.id, entry.path});
    return found.toLongLong() > 0;
}

void HomeSweep::sweepSome()
{
    try {
        for (int n = 0; n < kPerTurn && m_next < m_candidates.size(); ++n, ++m_next) {
            const StoreFiles::Entry& entry = m_candidates.at(m_next);
            if (hasRow(entry))
                continue;
            if (::unlink(QFile::encodeName(entry.path).constData()) == 0) {
                ++m_removed;
                qCInfo(lcStore) << "Removed" << entry.path << "which no page refers to";
            } else if (errno != ENOENT) {
                qCWarning(lcStore) << "Cannot remove" << entry.path << ":" << strerror(errno);
            }
        }
    } catch (const StoreError& e) {
        qCWarning(lcStore) << "The page files were not all tidied:" << e.message();
        done();
        return;
    }
    if (m_next < m_candidates.size()) {
        QTimer::singleShot(0, this, &HomeSweep::sweepSome);
        return;
    }
    done();
}

void HomeSweep::done()
{
    m_candidates.clear();
    m_running = false;
    emit finished();
}

} // namespace qmr
