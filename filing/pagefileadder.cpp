#include "filing/pagefileadder.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QRunnable>
#include <QTimer>
#include <utility>

#include "core/attempt.h"
#include "core/directfile.h"
#include "core/pagenotifier.h"
#include "core/partfile.h"
#include "core/workerpriority.h"
#include "filing/thumbnailmaker.h"
#include "store/commandcontext.h"
#include "store/itemrules.h"
#include "store/pageplace.h"
#include "store/pagestore.h"
#include "store/session.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

// Pages under way for each thumbnail thread: enough to keep both the copies and the
// thumbnails busy, few enough that a cancel takes effect at once.
constexpr int kAhead = 4;

// Names listed in one report; the rest are counted.
constexpr int kReportedNames = 15;

// Whether a file is small enough to be read and held whole.
bool fitsWhole(const QFile& in)
{
    return in.size() <= ThumbnailMaker::kReadWhole;
}

// A new page's file is never put over one that stands at its place: the window's thread
// cleared the place, so a file found there now came from elsewhere and stays.
Failure taken(const QString& target)
{
    return Failure(
        QCoreApplication::translate("qmr::PageFileAdder",
                                    "Another file appeared at %1 while the page was copied")
            .arg(target));
}

// Moves a written part file to the page's name.
Attempt<> placeWithoutReplacing(PartFile& part, const QString& target)
{
    switch (part.place(PartFile::Placing::NoReplace)) {
    case PartFile::Placed::Done:
        return {};
    case PartFile::Placed::TargetExists:
        return taken(target);
    case PartFile::Placed::Failed:
        break;
    }
    return Failure(part.errorString());
}

// Puts a file read whole into the page store; nothing half-copied ever stands under the
// page's name. A failure carries the system's reason.
Attempt<> writeIntoPlace(const DirectFile& contents, const QString& target)
{
    // Straight to the disk where the file system allows it: the copy then costs neither a
    // pass through the page cache nor its writing back.
    const Attempt<DirectFile::Outcome> direct =
        contents.writeTo(target, PartFile::Placing::NoReplace);
    if (!direct)
        return Failure(direct.why());
    switch (direct.value()) {
    case DirectFile::Outcome::Written:
        return {};
    case DirectFile::Outcome::TargetExists:
        return taken(target);
    case DirectFile::Outcome::Unsupported:
        break;
    }
    PartFile part(target);
    const QByteArray bytes = contents.bytes();
    if (!part.open() || !part.write(bytes.constData(), bytes.size()))
        return Failure(part.errorString());
    return placeWithoutReplacing(part, target);
}

// Copies a file too large to be held whole, a piece at a time.
Attempt<> copyIntoPlace(QFile& in, const QString& target)
{
    PartFile part(target);
    if (!part.open())
        return Failure(part.errorString());
    QByteArray buffer(1 << 20, Qt::Uninitialized);
    for (;;) {
        const qint64 n = in.read(buffer.data(), buffer.size());
        if (n < 0)
            return Failure(in.errorString());
        if (n == 0)
            break;
        if (!part.write(buffer.constData(), n))
            return Failure(part.errorString());
    }
    return placeWithoutReplacing(part, target);
}

} // namespace

PageFileAdder::PageFileAdder(const CommandContext& context, QObject* parent)
    : QObject(parent), m_context(context), m_noThumbnails(std::make_shared<std::atomic_bool>(false))
{
    setThreadCount(QThread::idealThreadCount());
}

PageFileAdder::~PageFileAdder()
{
    m_noThumbnails->store(true);
    // Copies hand their pages on to the thumbnail pool, so they end first.
    m_copyPool.waitForDone();
    m_thumbPool.waitForDone();
}

bool PageFileAdder::isShortcutFile(const QString& fileName)
{
    return !ItemRules::isPictureFile(fileName);
}

bool PageFileAdder::isImportableFile(const QString& fileName)
{
    return ItemRules::isPictureFile(fileName) || isShortcutFile(fileName);
}

QString PageFileAdder::fileType(const QString& fileName)
{
    const QString name = fileName.toLower();
    if (name.endsWith(QLatin1String(".jpg")) || name.endsWith(QLatin1String(".jpeg")))
        return QStringLiteral("jpg");
    return name.right(3);
}

void PageFileAdder::setThreadCount(int count)
{
    m_copyPool.setMaxThreadCount(qMax(1, count));
    m_thumbPool.setMaxThreadCount(qMax(1, count));
}

void PageFileAdder::begin()
{
    m_inBatch = true;
    m_highest.clear();
    m_holding = false;
    m_held.clear();
    // Anything the last batch left to remove goes before its problems are forgotten.
    removeOrphans();
    m_noThumbnails->store(false);
    m_halted = false;
    m_added = 0;
    m_problems.clear();
}

void PageFileAdder::skipThumbnails()
{
    m_noThumbnails->store(true);
}

void PageFileAdder::skip(const QString& fileName, const QString& reason)
{
    m_problems << fileName + QStringLiteral(": ") + reason;
}

qint32 PageFileAdder::addPageFromFile(const QString& fileName, qint32 documentId)
{
    const std::optional<NewRow> row = insertRow(fileName, documentId);
    if (!row)
        return -1;
    deliver(*row);
    return row->pageId;
}

std::optional<PageFileAdder::NewRow> PageFileAdder::insertRow(const QString& fileName,
                                                              qint32 documentId)
{
    const QFileInfo info(fileName);
    const QString path = info.absoluteFilePath();
    NewRow row;
    row.documentId = documentId;
    row.fileName = path;
    row.shortcut = isShortcutFile(path);
    try {
        PageStore& pages = m_context.session.pages();
        NewPage page;
        page.pageNumber = row.shortcut ? 0 : nextPageNumber(documentId);
        // What cannot be read now is named at the end, not filed as a page without a file.
        if (!info.exists()) {
            skip(path, QCoreApplication::translate("qmr::PageFileAdder", "No such file"));
            return std::nullopt;
        }
        if (info.isDir()) {
            skip(path, QCoreApplication::translate("qmr::PageFileAdder", "A folder, not a file"));
            return std::nullopt;
        }
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            skip(path, file.errorString());
            return std::nullopt;
        }
        page.fileSize = file.size();
        file.close();
        page.scanDate = QDate::currentDate();
        page.fileType = fileType(path);
        if (row.shortcut) {
            page.shortcut = true;
            page.filename = path;
        }
        row.pageId = pages.insertPage(documentId, page);
        if (m_inBatch && !row.shortcut)
            m_highest.insert(documentId, page.pageNumber);
    } catch (const StoreError& e) {
        skip(path, e.message());
        return std::nullopt;
    }
    return row;
}

qint32 PageFileAdder::nextPageNumber(qint32 documentId)
{
    if (const auto known = m_highest.constFind(documentId); known != m_highest.constEnd())
        return PageStore::numberAfter(*known);
    return m_context.session.pages().nextNumber(documentId);
}

void PageFileAdder::holdDeliveries()
{
    m_holding = true;
}

void PageFileAdder::releaseDeliveries()
{
    m_holding = false;
    removeOrphans();
    const QVector<NewRow> rows = std::exchange(m_held, {});
    for (const NewRow& row : rows)
        deliver(row);
}

void PageFileAdder::dropDeliveries(const QString& reason)
{
    m_holding = false;
    // The rolled-back rows took their numbers with them.
    m_highest.clear();
    for (const NewRow& row : std::exchange(m_held, {}))
        skip(row.fileName, reason);
    removeOrphans();
}

void PageFileAdder::deliver(const NewRow& row)
{
    if (m_holding) {
        m_held << row;
        return;
    }
    if (m_context.pageNotifier)
        m_context.pageNotifier->pageAdded(row.pageId);
    if (row.shortcut) {
        ++m_added;
        return;
    }
    const PagePaths& paths = m_context.session.paths();
    const QString pagePath = paths.computedPagePath(row.pageId);
    const QString thumbPath = paths.computedThumbPath(row.pageId);
    const QString home = paths.home().path();
    // A few copies ahead of the ones running, no more: a cancel takes effect at once and the
    // progress shows the work really done.
    waitForRoom(kAhead * m_thumbPool.maxThreadCount());
    ++m_outstanding;
    emit thumbnailComing(thumbPath);
    if (!paths.ensurePathInHome(pagePath)) {
        copyDone(row, QCoreApplication::translate("qmr::PageFileAdder",
                                                  "The directory %1 could not be made")
                          .arg(PagePaths::directoryPart(pagePath)));
        return;
    }
    // A file left at this place by a run that ended early is no copy of this one.
    if (const QString taken =
            PagePlace::clear(m_context.session.pages(), paths, row.pageId, pagePath);
        !taken.isEmpty()) {
        m_halted = true;
        copyDone(row, taken);
        return;
    }
    const std::shared_ptr<std::atomic_bool> noThumbnails = m_noThumbnails;
    // The copy and the thumbnail end in either order; the last to end reports both.
    const auto joint = std::make_shared<Joint>();
    const auto finishPart = [this, row, joint] {
        if (joint->parts.fetch_sub(1, std::memory_order_acq_rel) == 1)
            QMetaObject::invokeMethod(
                this, [this, row, joint] { copyDone(row, joint->error, joint->tile); },
                Qt::QueuedConnection);
    };
    const auto makeThumbnail = [thumbPath, home, noThumbnails, joint,
                                finishPart](const std::optional<DirectFile>& contents,
                                            const QString& pagePath) {
        WorkerPriority::lowerCurrentThread();
        // A thumbnail left by an earlier page of this id must not stand for this one.
        QFile::remove(thumbPath);
        if (!noThumbnails->load()) {
            if (contents)
                ThumbnailMaker::makeThumbnailFromData(contents->bytes(), thumbPath, home,
                                                      &joint->tile);
            else
                ThumbnailMaker::makeThumbnail(pagePath, thumbPath, home, &joint->tile);
        }
        finishPart();
    };
    m_copyPool.start(QRunnable::create([this, row, pagePath, joint, finishPart, makeThumbnail] {
        WorkerPriority::lowerCurrentThread();
        QFile in(row.fileName);
        QString error;
        if (!in.open(QIODevice::ReadOnly)) {
            error = in.errorString();
        } else if (fitsWhole(in)) {
            const Attempt<DirectFile> read = DirectFile::read(in);
            if (read) {
                const std::optional<DirectFile> contents = read.value();
                // The thumbnail needs the contents alone: it is made while they go to the disk.
                m_thumbPool.start(
                    QRunnable::create([contents, makeThumbnail] { makeThumbnail(contents, {}); }));
                if (const Attempt<> written = writeIntoPlace(*contents, pagePath); !written)
                    joint->error = written.why();
                finishPart();
                return;
            }
            error = read.why();
        } else {
            const Attempt<> copied = copyIntoPlace(in, pagePath);
            if (copied) {
                m_thumbPool.start(QRunnable::create(
                    [pagePath, makeThumbnail] { makeThumbnail(std::nullopt, pagePath); }));
                finishPart();
                return;
            }
            error = copied.why();
        }
        joint->error = error;
        // No thumbnail comes for a file that never arrived.
        joint->parts.fetch_sub(1, std::memory_order_relaxed);
        finishPart();
    }));
}

void PageFileAdder::copyDone(const NewRow& row, const QString& error, const QImage& tile)
{
    --m_outstanding;
    if (m_waiting)
        m_waiting->quit();
    const QString thumbPath = m_context.session.paths().computedThumbPath(row.pageId);
    // The thumbnail was made while the copy failed: it stands for no page.
    if (!error.isEmpty())
        QFile::remove(thumbPath);
    emit thumbnailDone(thumbPath, error.isEmpty() ? tile : QImage());
    if (error.isEmpty()) {
        ++m_added;
        return;
    }
    // A row whose file never arrived would be a page that cannot open: it goes again. Not
    // inside a group of rows still open, though, whose rollback would bring it back.
    skip(row.fileName, error);
    m_orphans << Orphan{row.pageId, int(m_problems.size()) - 1};
    if (!m_holding)
        removeOrphans();
}

void PageFileAdder::removeOrphans()
{
    for (const Orphan& orphan : std::exchange(m_orphans, {})) {
        try {
            m_context.session.pages().removeRow(orphan.pageId);
        } catch (const StoreError& e) {
            if (orphan.problem >= 0 && orphan.problem < m_problems.size())
                m_problems[orphan.problem] +=
                    QCoreApplication::translate("qmr::PageFileAdder",
                                                " (its page %1 stays without a file: %2)")
                        .arg(orphan.pageId)
                        .arg(e.message());
        }
    }
}

void PageFileAdder::waitForRoom(int limit)
{
    // A loop of its own, woken by each finished copy and at least every few milliseconds:
    // a wait that relies on one wake-up alone can miss it and never return.
    while (m_outstanding >= limit) {
        QEventLoop loop;
        m_waiting = &loop;
        QTimer::singleShot(std::chrono::milliseconds(10), &loop, &QEventLoop::quit);
        loop.exec();
        m_waiting = nullptr;
    }
}

void PageFileAdder::finish()
{
    m_inBatch = false;
    m_highest.clear();
    waitForRoom(1);
    if (!m_holding)
        removeOrphans();
}

QString PageFileAdder::report() const
{
    if (m_problems.isEmpty())
        return QString();
    const int total = m_added + int(m_problems.size());
    QString text =
        total == 1
            ? QCoreApplication::translate("qmr::PageFileAdder", "The file could not be added:\n")
            : QCoreApplication::translate("qmr::PageFileAdder",
                                          "%1 of %2 files were added. These could not be "
                                          "added:\n")
                  .arg(m_added)
                  .arg(total);
    for (int i = 0; i < m_problems.size() && i < kReportedNames; ++i)
        text += QLatin1Char('\n') + m_problems.at(i);
    if (m_problems.size() > kReportedNames)
        text += QCoreApplication::translate("qmr::PageFileAdder", "\n... and %1 more.")
                    .arg(m_problems.size() - kReportedNames);
    return text;
}

} // namespace qmr
