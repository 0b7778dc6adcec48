#include "store/pageplace.h"

#include <QCoreApplication>
#include <QFile>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "store/storelog.h"

namespace qmr {

QString PagePlace::clear(const PageStore& pages, const PagePaths& paths, qint32 pageId,
                         const QString& path)
{
    const QByteArray native = QFile::encodeName(path);
    struct stat info;
    if (::lstat(native.constData(), &info) != 0) {
        if (errno == ENOENT)
            return QString();
        return QCoreApplication::translate("qmr::PagePlace", "Cannot look at %1: %2")
            .arg(path, QString::fromLocal8Bit(std::strerror(errno)));
    }
    const QVector<qint32> users = pages.pagesUsingFile(path, paths.computedIdOf(path), pageId);
    if (!users.isEmpty())
        return QCoreApplication::translate("qmr::PagePlace", "%1 is the file of page %2 already")
            .arg(path)
            .arg(users.first());
    if (::unlink(native.constData()) != 0 && errno != ENOENT)
        return QCoreApplication::translate("qmr::PagePlace",
                                           "Cannot remove %1, which no page refers to: %2")
            .arg(path, QString::fromLocal8Bit(std::strerror(errno)));
    qCInfo(lcStore) << "Removed" << path << "which no page refers to, before page" << pageId
                    << "took its place";
    return QString();
}

} // namespace qmr
