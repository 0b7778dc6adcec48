#include "core/apphome.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace qmr {

AppHome::AppHome(const QString& dir) : m_path(QDir::cleanPath(QDir(dir).absolutePath()))
{
}

AppHome AppHome::fromArguments(const QStringList& arguments)
{
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& arg = arguments.at(i);
        if (arg == QLatin1String("--home") && i + 1 < arguments.size())
            return AppHome(arguments.at(i + 1));
        if (arg.startsWith(QLatin1String("--home=")))
            return AppHome(arg.mid(7));
    }
    const QString env = qEnvironmentVariable("QUILLMERE_HOME");
    if (!env.isEmpty())
        return AppHome(env);
    QString data = qEnvironmentVariable("XDG_DATA_HOME");
    if (data.isEmpty())
        data = QDir::homePath() + QLatin1String("/.local/share");
    return AppHome(data + QLatin1String("/Quillmere"));
}

QString AppHome::file(const QString& relative) const
{
    return m_path + QLatin1Char('/') + relative;
}

namespace {

// Makes `path` a directory at a time; when one is missing and cannot be made, or is in the way
// as something else, the first such tells why.
Attempt<> makeEachPart(const QString& path)
{
    const QByteArray bytes = QFile::encodeName(path);
    for (qsizetype end = 1; end <= bytes.size(); ++end) {
        if (end < bytes.size() && bytes.at(end) != '/')
            continue;
        const QByteArray part = bytes.left(end);
        struct stat st;
        int error = 0;
        if (::stat(part.constData(), &st) == 0)
            error = S_ISDIR(st.st_mode) ? 0 : ENOTDIR;
        else if (errno != ENOENT)
            error = errno;
        else if (::mkdir(part.constData(), 0777) != 0 && errno != EEXIST)
            error = errno;
        if (error == 0)
            continue;
        const QString reason = QString::fromLocal8Bit(std::strerror(error));
        const QString at = QFile::decodeName(part);
        return Failure(at == path ? reason : QStringLiteral("%1 (%2)").arg(reason, at));
    }
    return {};
}

} // namespace

Attempt<> AppHome::ensureExists() const
{
    if (m_path.isEmpty())
        return Failure(QCoreApplication::translate("qmr::AppHome", "No directory is named"));
    if (QDir().mkpath(m_path))
        return {};
    // Again a part at a time, to find the one that cannot be made (or made by now after all).
    return makeEachPart(m_path);
}

} // namespace qmr
