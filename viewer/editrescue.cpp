#include "viewer/editrescue.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QSaveFile>
#include <QWidget>

#include "core/prompter.h"
#include "core/settings.h"
#include "viewer/pageviewwindow.h"

namespace qmr {

QString EditRescue::folder() const
{
    return m_home.file(QStringLiteral("Recovered"));
}

bool EditRescue::keep(const QImage& picture, qint32 pageId)
{
    const QDir dir(folder());
    if (picture.isNull() || !dir.mkpath(QStringLiteral(".")))
        return false;
    const QString stem =
        tr("Page %1, %2")
            .arg(pageId)
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh.mm.ss")));
    QString name = stem + QStringLiteral(".png");
    for (int n = 2; dir.exists(name); ++n)
        name = QStringLiteral("%1 (%2).png").arg(stem).arg(n);
    QSaveFile file(dir.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.commit()) {
        qWarning("Could not keep the unsaved picture of page %d in %s: %s", pageId,
                 qPrintable(dir.path()), qPrintable(file.errorString()));
        return false;
    }
    return true;
}

int EditRescue::keepOpenViewers()
{
    int kept = 0;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (const auto* viewer = qobject_cast<PageViewWindow*>(window))
            if (const QImage picture = viewer->unsavedPicture(); !picture.isNull())
                kept += keep(picture, viewer->location().pageId) ? 1 : 0;
    if (kept > 0) {
        m_settings.set(keys::RecoveredTo, folder());
        m_settings.sync();
    }
    return kept;
}

void EditRescue::tellWhatWasKept(Settings& settings, Prompter& prompter)
{
    const QString where = settings.get(keys::RecoveredTo);
    if (where.isEmpty())
        return;
    settings.set(keys::RecoveredTo, QString());
    prompter.tell(tr("Quillmere was ended while a viewer held changes that were not saved. "
                     "The changed pictures were kept in %1; the pages are as they were.")
                      .arg(QDir::toNativeSeparators(where)));
}

} // namespace qmr
