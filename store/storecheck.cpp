#include "store/storecheck.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QSet>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "store/database.h"
#include "store/pagepaths.h"
#include "store/storeerror.h"
#include "store/storefiles.h"
#include "store/storelog.h"

namespace qmr {

namespace {

// Seconds by which a page may be newer than its thumbnail: a page's copy can end after the
// thumbnail made from its bytes, but an image changed later calls for a new thumbnail.
constexpr long kStaleAfter = 30;

QString systemText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

bool removeFile(const QString& path)
{
    return ::unlink(QFile::encodeName(path).constData()) == 0 || errno == ENOENT;
}

} // namespace

QString StoreCheck::Summary::text() const
{
    if (problems == 0)
        return QCoreApplication::translate("qmr::StoreCheck", "No problems found.");
    QString text =
        problems == 1
            ? QCoreApplication::translate("qmr::StoreCheck", "1 problem found")
            : QCoreApplication::translate("qmr::StoreCheck", "%1 problems found").arg(problems);
    if (repaired > 0)
        text += QCoreApplication::translate("qmr::StoreCheck", ", %1 repaired").arg(repaired);
    return text + QLatin1Char('.');
}

StoreCheck::Summary StoreCheck::run(bool repair, const Report& report)
{
    m_repair = repair;
    m_report = report;
    m_summary = Summary();
    checkIntegrity();
    checkPages();
    checkFiles();
    return m_summary;
}

void StoreCheck::found(const QString& problem, bool repaired)
{
    ++m_summary.problems;
    if (repaired)
        ++m_summary.repaired;
    if (m_report)
        m_report(problem, repaired);
}

void StoreCheck::checkIntegrity()
{
    try {
        const Recordset rs = m_db.openRecordset(QStringLiteral("PRAGMA integrity_check"));
        for (int i = 0; i < rs.recordCount(); ++i) {
            const QString line = rs.value(i, 0).toString();
            if (line != QLatin1String("ok"))
                found(QCoreApplication::translate("qmr::StoreCheck", "The store is damaged: %1")
                          .arg(line),
                      false);
        }
    } catch (const StoreError& e) {
        found(QCoreApplication::translate("qmr::StoreCheck", "The store is damaged: %1")
                  .arg(e.message()),
              false);
    }
}

void StoreCheck::checkPages()
{
    Recordset rs;
    try {
        rs = m_db.openRecordset(QStringLiteral(
            "SELECT PageId, Filename, FileSize FROM Page WHERE ShortcutYN IS NOT 'Y' "
            "ORDER BY PageId"));
    } catch (const StoreError& e) {
        found(QCoreApplication::translate("qmr::StoreCheck", "The pages cannot be read: %1")
                  .arg(e.message()),
              false);
        return;
    }
    for (int i = 0; i < rs.recordCount(); ++i) {
        const qint32 id = rs.integer(i, QStringLiteral("PageId"));
        const QString stored = rs.text(i, QStringLiteral("Filename"));
        const QVariant size = rs.value(i, QStringLiteral("FileSize"));
        const QString path = m_paths.pagePath(id, stored);
        const QByteArray native = QFile::encodeName(path);
        // Read as the page is, never through a link planted in its place.
        const int fd = ::open(native.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0) {
            const int error = errno;
            if (error == ENOENT)
                found(QCoreApplication::translate("qmr::StoreCheck",
                                                  "Page %1: its file %2 is missing")
                          .arg(id)
                          .arg(path),
                      false);
            else
                found(QCoreApplication::translate("qmr::StoreCheck",
                                                  "Page %1: its file %2 cannot be read: %3")
                          .arg(id)
                          .arg(path, error == ELOOP ? QCoreApplication::translate("qmr::StoreCheck",
                                                                                  "it is a link")
                                                    : systemText(error)),
                      false);
            continue;
        }
        struct stat page;
        const bool looked = ::fstat(fd, &page) == 0;
        ::close(fd);
        if (!looked || !S_ISREG(page.st_mode)) {
            found(QCoreApplication::translate("qmr::StoreCheck", "Page %1: %2 is not a file")
                      .arg(id)
                      .arg(path),
                  false);
            continue;
        }
        if (size.isNull() || size.toLongLong() != qint64(page.st_size)) {
            bool mended = false;
            if (m_repair) {
                try {
                    m_db.execute(QStringLiteral("UPDATE Page SET FileSize = ? WHERE PageId = ?"),
                                 {qlonglong(page.st_size), id});
                    mended = true;
                } catch (const StoreError& e) {
                    qCWarning(lcStore)
                        << "FileSize of page" << id << "not corrected:" << e.message();
                }
            }
            found(QCoreApplication::translate("qmr::StoreCheck",
                                              "Page %1: its file is %2 bytes, the store says %3")
                      .arg(id)
                      .arg(qint64(page.st_size))
                      .arg(size.isNull() ? QStringLiteral("nothing") : size.toString()),
                  mended);
        }
        const QString thumb = m_paths.thumbPath(id, stored);
        struct stat tile;
        const bool hasThumb = ::lstat(QFile::encodeName(thumb).constData(), &tile) == 0;
        const bool stale = hasThumb && page.st_mtim.tv_sec > tile.st_mtim.tv_sec + kStaleAfter;
        if (!hasThumb || stale) {
            const bool mended = m_repair && m_makeThumbnail && m_makeThumbnail(path, thumb);
            found(hasThumb
                      ? QCoreApplication::translate(
                            "qmr::StoreCheck", "Page %1: its thumbnail %2 is older than the page")
                            .arg(id)
                            .arg(thumb)
                      : QCoreApplication::translate("qmr::StoreCheck",
                                                    "Page %1: its thumbnail %2 is missing")
                            .arg(id)
                            .arg(thumb),
                  mended);
        }
    }
}

void StoreCheck::checkFiles()
{
    // Which pages live at their computed place, and which stored names lie in the home.
    QSet<qint32> computed;
    QSet<QString> stored;
    try {
        const Recordset rs =
            m_db.openRecordset(QStringLiteral("SELECT PageId, Filename FROM Page"));
        for (int i = 0; i < rs.recordCount(); ++i) {
            const QString name = rs.text(i, QStringLiteral("Filename"));
            if (name.isEmpty())
                computed.insert(rs.integer(i, QStringLiteral("PageId")));
            else
                stored.insert(name);
        }
    } catch (const StoreError& e) {
        // Without the rows no file can be called an orphan.
        found(QCoreApplication::translate("qmr::StoreCheck", "The page files cannot be checked: %1")
                  .arg(e.message()),
              false);
        return;
    }
    for (const StoreFiles::Entry& entry : StoreFiles(m_paths).list()) {
        QString problem;
        switch (entry.kind) {
        case StoreFiles::Entry::Kind::Leftover:
            problem = QCoreApplication::translate("qmr::StoreCheck",
                                                  "%1 is left from a copy that never ended")
                          .arg(entry.path);
            break;
        case StoreFiles::Entry::Kind::Page:
            if (computed.contains(entry.id) || stored.contains(entry.path))
                continue;
            problem = QCoreApplication::translate("qmr::StoreCheck", "%1 belongs to no page")
                          .arg(entry.path);
            break;
        case StoreFiles::Entry::Kind::Thumbnail:
            if (computed.contains(entry.id))
                continue;
            problem =
                QCoreApplication::translate("qmr::StoreCheck", "%1 is the thumbnail of no page")
                    .arg(entry.path);
            break;
        }
        found(problem, m_repair && removeFile(entry.path));
    }
}

} // namespace qmr
