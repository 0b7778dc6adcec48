#include "core/apphome.h"

#include <QDir>
#include <QStandardPaths>

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

bool AppHome::ensureExists() const
{
    return !m_path.isEmpty() && QDir().mkpath(m_path);
}

} // namespace qmr
