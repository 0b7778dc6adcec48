#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <memory>

#include "core/level.h"
#include "core/navigatorcallbacks.h"
#include "exchange/exchangefilesystem.h"
#include "exchange/exchangereader.h"
#include "exchange/filetypefilter.h"
#include "exchange/importreport.h"

namespace qmr {

class ExchangeQuestions;
class Progress;
class Session;
class ThumbnailQueue;

// Brings files into the store: an exchange directory into a cabinet, merged by name (drawers,
// folders, documents and pages whose names stand already are reused), or the files of one
// directory into a folder (a document each) or a document (a page each). Images are copied
// into the store and get thumbnails, made on every core; any other file becomes a shortcut
// to where it lies. The rows of one directory are written together with their files, and a
// stop keeps what came in before it.
class CabinetImporter
{
    Q_DECLARE_TR_FUNCTIONS(qmr::CabinetImporter)

public:
    CabinetImporter(Session& session, ExchangeFileSystem& fs, ExchangeQuestions& questions,
                    NavigatorCallbacks* navigator = nullptr);
    ~CabinetImporter();

    // Shows an action and a name in the status line, giving a waiting Cancel its turn.
    void setStatusLine(std::function<void(const QString&, const QString&)> show)
    {
        m_showStatus = std::move(show);
    }
    // How many threads make thumbnails; 0 (the default) for one per core.
    void setThumbnailThreads(int threads) { m_threads = threads; }

    // An exchange directory on `diskCount` disks into the cabinet; the walk steps `progress`,
    // which the caller has shown.
    ImportReport importCabinet(qint32 cabinetId, const QString& path, int diskCount,
                               Progress& progress);
    // The files of one directory that `filter` takes: each a new document in a folder, or a
    // new page of a document. Opens and closes `progress` itself.
    ImportReport importFiles(qint32 targetId, Level level, const QString& dir,
                             const FileTypeFilter& filter, Progress& progress);

    static QString missingPathMessage(const QString& path);
    static QString missingMarkerMessage();

private:
    class Unit;

    void begin(Progress& progress);
    void finish();
    bool halted() const;
    void status(const QString& action, const QString& text);
    void problem(const QString& text) { m_report.problems << text; }

    // What a directory of the walk holds; each link in it is named in the report.
    DirectoryListing walked(const QString& dir);
    int countImportFiles(const QString& path);
    void importDisk(qint32 cabinetId, const QString& path);
    void importDrawer(qint32 cabinetId, const QString& path);
    void importFolder(qint32 drawerId, const QString& path);
    void importDocument(qint32 folderId, const QString& path);

    qint32 getOrCreate(Level level, qint32 parentId, const QString& name, bool showStatus);
    void applyDescription(Level level, qint32 id, const QString& dir, const QStringList& files,
                          const QString& manifest);
    void applyDocument(qint32 documentId, const QString& dir, const QStringList& files);
    // The files of a directory that a walk takes as pages: the exchange files left out, and
    // those that would be shortcuts under a name a shortcut cannot keep named in the report.
    QStringList pageFiles(const QString& dir, const QStringList& files,
                          const FileTypeFilter& filter);
    void importDirectoryFiles(qint32 parentId, const QString& dir, Level level,
                              const QStringList& names);
    void importFile(qint32 documentId, const QString& dir, const QString& name);
    // The page of this name, or a new row (`newRow` then true); -1 when none can be made.
    qint32 addImportedPage(qint32 documentId, const QString& name, qint64 length,
                           const QString& path, bool& newRow);
    bool copyImportedPageFile(const QString& source, qint32 pageId, bool newRow);

    void dropPending(int items, int files);
    void flushPending();
    // Commits the rows gathered so far once there are enough of them, and opens the next group.
    void checkpoint();

    Session& m_session;
    ExchangeFileSystem& m_fs;
    ExchangeQuestions& m_questions;
    NavigatorCallbacks* m_navigator;
    ExchangeReader m_reader;
    std::function<void(const QString&, const QString&)> m_showStatus;
    int m_threads = 0;

    // The state of one run.
    Progress* m_progress = nullptr;
    std::unique_ptr<ThumbnailQueue> m_thumbs;
    ImportReport m_report;
    bool m_halt = false;
    // Made but not yet committed: announced to the window, or removed again, with their rows.
    QVector<CreatedItem> m_pendingItems;
    QStringList m_pendingFiles;
    QSet<qint32> m_touchedDocuments;
    // The open group of rows that several files share, and how much it holds.
    std::unique_ptr<Unit> m_group;
    QElapsedTimer m_groupAge;
    int m_groupFiles = 0;
};

} // namespace qmr
