#pragma once

#include <QDate>
#include <QEventLoop>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <QVector>
#include <atomic>
#include <memory>
#include <optional>

namespace qmr {

struct CommandContext;

// Files from outside becoming pages of a document, for a drop and a paste. A JPEG or BMP file
// is copied into the page store and gets its thumbnail; any other file stays where it is and
// becomes a shortcut page numbered 0. The row is written and the notice sent first; the copy
// and the thumbnail follow on every core, so that a batch of scans keeps the window
// answering. A copy is written aside and renamed into place, so nothing half-copied ever
// stands as a page file. A file that cannot be read, or whose copy fails, becomes no page
// and is named in the batch's report.
class PageFileAdder : public QObject
{
    Q_OBJECT
public:
    // A page row written, its file still to come.
    struct NewRow
    {
        qint32 pageId = -1;
        qint32 documentId = -1;
        QString fileName;
        bool shortcut = false;
    };

    // `context` is the navigator's, which outlives this.
    explicit PageFileAdder(const CommandContext& context, QObject* parent = nullptr);
    ~PageFileAdder() override;

    static bool isShortcutFile(const QString& fileName);
    // True for every name: kept as the one gate of the loops over dropped and pasted files.
    static bool isImportableFile(const QString& fileName);
    // "jpg" for .jpg and .jpeg, else the last three characters of the lower-cased name.
    static QString fileType(const QString& fileName);

    // The row, the notice, then the copy and the thumbnail under way. The new page's id, or
    // -1 when the file was skipped.
    qint32 addPageFromFile(const QString& fileName, qint32 documentId);
    // The row alone, for a caller that writes it together with rows of its own; nothing when
    // the file is skipped. deliver() follows once the caller has committed.
    std::optional<NewRow> insertRow(const QString& fileName, qint32 documentId);
    // The notice, then for an image the copy into the page store and the thumbnail; held
    // back while deliveries are held.
    void deliver(const NewRow& row);

    // A caller writing rows inside a transaction of its own holds their deliveries until it
    // has committed: no notice goes out and no file is copied for a row that could still be
    // rolled back.
    void holdDeliveries();
    // Committed: the held rows are delivered.
    void releaseDeliveries();
    // Rolled back: the held rows are gone, and their files are named with the reason.
    void dropDeliveries(const QString& reason);
    int held() const { return int(m_held.size()); }

    // A batch: begin() forgets the last one's outcome; finish() waits, with events running,
    // until every copy has ended.
    void begin();
    void finish();
    // The batch was cancelled: copies under way end, thumbnails not made yet are left to the
    // page pane, which makes a missing one when it shows the page.
    void skipThumbnails();
    // Records a file that did not become a page, and why.
    void skip(const QString& fileName, const QString& reason);
    int added() const { return m_added; }
    // A page's place held the file of another page: the batch goes no further.
    bool halted() const { return m_halted; }
    // "path: reason" for each file that did not become a page.
    const QStringList& problems() const { return m_problems; }
    // The one message that ends a batch with problems; "" when there were none.
    QString report() const;

    void setThreadCount(int count);
    // Copies started and not ended yet.
    int outstanding() const { return m_outstanding; }

signals:
    // A page's file and thumbnail are on their way: whoever shows thumbnails waits for
    // them rather than making a second one.
    void thumbnailComing(const QString& thumbPath);
    // The copy and the thumbnail have ended: `tile` is the thumbnail made, null when none was.
    void thumbnailDone(const QString& thumbPath, const QImage& tile);

private:
    // One page's copy and thumbnail, which run apart and end in either order.
    struct Joint
    {
        std::atomic_int parts{2};
        QString error; // the copy's, set before its part ends
        QImage tile;   // the thumbnail's, likewise
    };

    void copyDone(const NewRow& row, const QString& error, const QImage& tile = QImage());
    void waitForRoom(int limit);
    qint32 nextPageNumber(qint32 documentId);
    void removeOrphans();

    const CommandContext& m_context;
    // Copies wait for the disk and thumbnails for the processor: apart, neither holds up the
    // other.
    QThreadPool m_copyPool;
    QThreadPool m_thumbPool;
    std::shared_ptr<std::atomic_bool> m_noThumbnails;
    int m_outstanding = 0;
    QEventLoop* m_waiting = nullptr;
    bool m_holding = false;
    QVector<NewRow> m_held;
    // Rows whose copy failed, to be removed once no group of rows is open; with the entry of
    // the problem that names them.
    struct Orphan
    {
        qint32 pageId;
        int problem;
    };
    QVector<Orphan> m_orphans;
    // Within a batch, the highest page number each document has reached: nothing else
    // numbers its pages meanwhile, and asking the store for every file of a large drop reads
    // the document's pages again and again.
    bool m_inBatch = false;
    QHash<qint32, qint32> m_highest;
    int m_added = 0;
    bool m_halted = false;
    QStringList m_problems;
};

} // namespace qmr
