#include "help/helplocator.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include "core/apphome.h"

namespace qmr {

HelpLocator::HelpLocator(const QString& executableDir, const QStringList& dataDirs,
                         const QString& homeDir)
{
    QStringList dirs;
    dirs << executableDir << dataDirs << homeDir;
    for (const QString& dir : dirs) {
        if (dir.isEmpty())
            continue;
        const QString clean = QDir::cleanPath(dir);
        if (!m_dirs.contains(clean))
            m_dirs << clean;
    }
}

HelpLocator HelpLocator::forRun(const AppHome& home)
{
    const QString exe = QCoreApplication::applicationDirPath();
    QStringList data;
    data << exe + QStringLiteral("/" QMR_RELATIVE_DATADIR);
    data << QStringLiteral(QMR_INSTALL_DATADIR);
    for (const QString& dir :
         QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation))
        data << dir + QStringLiteral("/quillmere");
    return HelpLocator(exe, data, home.path());
}

QString HelpLocator::fileName()
{
    return QStringLiteral("qmrhelp.txt");
}

QStringList HelpLocator::candidates() const
{
    QStringList files;
    for (const QString& dir : m_dirs)
        files << dir + QLatin1Char('/') + fileName();
    return files;
}

QString HelpLocator::locate() const
{
    for (const QString& file : candidates()) {
        if (QFileInfo(file).isFile())
            return file;
    }
    return QString();
}

QByteArray HelpLocator::shippedText()
{
    QFile file(QStringLiteral(":/help/qmrhelp.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

bool HelpLocator::ensureInHome(const AppHome& home)
{
    const QString path = home.file(fileName());
    if (QFileInfo::exists(path))
        return true;
    const QByteArray text = shippedText();
    QSaveFile file(path);
    return !text.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(text) == text.size() &&
           file.commit();
}

} // namespace qmr
