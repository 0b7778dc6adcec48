#include "viewer/pagesaver.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "core/choosers.h"
#include "core/navigatorcallbacks.h"
#include "core/progress.h"
#include "core/prompter.h"
#include "filing/imagefile.h"
#include "filing/thumbnailmaker.h"
#include "store/itemrules.h"
#include "store/pageplace.h"
#include "store/session.h"
#include "store/storecolumns.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

QString enterName()
{
    return QCoreApplication::translate("qmr::PageSaver", "Please enter a filename.");
}

QString noImage()
{
    return QCoreApplication::translate("qmr::PageSaver", "There is no image to save.");
}

void removeIfThere(const QString& path)
{
    if (!path.isEmpty() && QFile::exists(path))
        QFile::remove(path);
}

} // namespace

int PageSaver::qualityFactor(const Settings& settings, bool resave)
{
    const bool picture = settings.get(keys::ImageType).toLower() == QLatin1String("picture");
    if (resave || picture)
        return int(settings.number(keys::PicQuality));
    return int(settings.number(keys::DocQuality));
}

bool PageSaver::isWithin(const QString& path, const QString& home)
{
    auto canonical = [](const QString& p) {
        // The deepest existing directory stands for the path, so that links count.
        QFileInfo info(QDir::cleanPath(p));
        QString rest;
        while (!info.exists() && info.fileName() != info.filePath()) {
            rest = QLatin1Char('/') + info.fileName() + rest;
            info = QFileInfo(info.path());
        }
        const QString base = info.exists() ? info.canonicalFilePath() : info.filePath();
        return QDir::cleanPath(base + rest);
    };
    const QString p = canonical(path);
    const QString h = canonical(home);
    return p == h || p.startsWith(h.endsWith(QLatin1Char('/')) ? h : h + QLatin1Char('/'));
}

PageSaver::Result PageSaver::save(const QImage& image, SaveTarget& target,
                                  const std::function<void(SaveTarget&)>& reresolve)
{
    Prompter& prompter = m_context.prompter;
    if (image.isNull()) {
        prompter.tell(noImage());
        return Result::Stopped;
    }
    const PageLocation& location = target.location;
    QString& name = target.filename;
    if (location.storage != 0 && !location.storagePath.isEmpty()) {
        if (name.endsWith(QLatin1Char('/'))) {
            prompter.tell(enterName());
            return Result::FocusFilename;
        }
        if (ItemRules::containsBadPathCharacters(name)) {
            prompter.tell(ItemRules::badCharactersMessage());
            name = ItemRules::stripBadPathCharacters(name);
            return Result::Stopped;
        }
    }

    bool autoAssign = false;
    bool deleteOld = false;
    if (name.isEmpty()) {
        if (prompter.ask(tr("No filename entered.  Do you want to auto-assign a "
                            "filename?"),
                         Prompter::Buttons::YesNo) != Prompter::Answer::Yes)
            return Result::Stopped;
        autoAssign = true;
    } else {
        if (!location.storagePath.isEmpty() && name.trimmed().endsWith(QLatin1Char('/'))) {
            prompter.tell(enterName());
            return Result::Stopped;
        }
        if (name.toLower().right(4) != QLatin1String(".jpg")) {
            // Only the file's own name counts: directories on the way may hold dots.
            if (PagePaths::filePart(QLatin1Char('/') + name).contains(QLatin1Char('.'))) {
                prompter.tell(tr("The file extension must be .JPG (please change filename)."));
                return Result::Stopped;
            }
            name += QStringLiteral(".jpg");
        }
        // A bare name goes to the cabinet's storage directory: stored names are whole paths.
        if (QDir::isRelativePath(name) && !location.storagePath.isEmpty())
            name = QDir::cleanPath(location.storagePath + QLatin1Char('/') + name);
        if (name.trimmed().toLower() != target.currentFile.trimmed().toLower()) {
            if (QFile::exists(name) &&
                prompter.ask(tr("The file named '%1' aready exists.\nDo you want to overwrite "
                                "this file?")
                                 .arg(name),
                             Prompter::Buttons::YesNo) != Prompter::Answer::Yes)
                return Result::Stopped;
            if (!target.currentFile.isEmpty())
                deleteOld = prompter.ask(tr("You have renamed this file.  Do you "
                                            "want to delete the old filename?\n"
                                            "Old filename: '%1'")
                                             .arg(target.currentFile),
                                         Prompter::Buttons::YesNo) == Prompter::Answer::Yes;
        }
    }

    const QString oldFile = target.currentFile;
    const Result result = savePage(image, target, autoAssign, reresolve);
    if (result != Result::Saved)
        return result;
    if (deleteOld && oldFile != target.currentFile) {
        removeIfThere(PagePaths::directoryPart(oldFile) + QStringLiteral("Thumbs/") +
                      PagePaths::filePart(oldFile));
        removeIfThere(oldFile);
        removeIfThere(m_context.session.paths().computedThumbPath(target.location.pageId));
    }
    if (target.mode == ViewerMode::Add)
        target.filename.clear();
    if (m_context.navigator)
        m_context.navigator->refreshPages(target.location.documentId, target.location.pageId);
    return Result::Saved;
}

PageSaver::Result PageSaver::savePage(const QImage& image, SaveTarget& target, bool autoAssign,
                                      const std::function<void(SaveTarget&)>& reresolve)
{
    Session& session = m_context.session;
    Progress& progress = m_context.progress;
    const int quality = qualityFactor(session.settings(), target.mode != ViewerMode::Add);
    if (target.mode == ViewerMode::Add && reresolve)
        reresolve(target);
    if (target.mode == ViewerMode::Add && target.location.storage == 0)
        target.filename.clear();
    const qint32 pageId = target.location.pageId;
    // An auto-assigned page lives at its computed path, which an empty name stands for.
    const QString stored = autoAssign ? QString() : target.filename;
    const QString path = autoAssign ? session.paths().computedPagePath(pageId)
                                    : session.paths().pagePath(pageId, stored);
    try {
        // A name the store cannot hold is refused before anything is written.
        StoreColumns::check(QStringLiteral("Page"), QStringLiteral("Filename"), stored);
    } catch (const StoreError& e) {
        m_context.prompter.tell(e.message());
        return Result::Failed;
    }

    progress.start(tr("Saving page"), 1, 4);
    progress.step(tr("Save image"));
    // A new page's computed place may hold a file left by a run that ended early: never
    // this page's, so it goes, and nothing else is written over.
    const bool newFile = target.mode == ViewerMode::Add && stored.isEmpty();
    Attempt<> written;
    if (!PagePaths::ensurePathExists(path, session.home().path()))
        written = Failure(tr("The image could not be written to '%1': its directory "
                             "could not be made.")
                              .arg(path));
    else if (const QString taken =
                 newFile ? PagePlace::clear(session.pages(), session.paths(), pageId, path)
                         : QString();
             !taken.isEmpty())
        written = Failure(taken);
    else
        written = ImageFile::writeJpeg(image, path, quality,
                                       newFile ? PartFile::Placing::NoReplace
                                               : PartFile::Placing::Replace);
    if (!written) {
        progress.end();
        m_context.prompter.tell(written.why());
        return Result::Failed;
    }

    progress.step(tr("Save thumbnail"));
    const QString thumb = session.paths().thumbPath(pageId, stored);
    if (PagePaths::ensurePathExists(thumb, session.home().path())) {
        const QImage reduced = image.scaled(ThumbnailMaker::reducedSize(image.size()),
                                            Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        // A stale thumbnail would outlive a failed one: the pane makes a new one instead.
        if (!ImageFile::writeJpeg(reduced, thumb, 10))
            removeIfThere(thumb);
    }

    try {
        session.pages().setFile(pageId, stored, QFileInfo(path).size());
    } catch (const StoreError& e) {
        progress.end();
        m_context.prompter.tell(e.message());
        return Result::Failed;
    }
    target.currentFile = path;
    progress.step(tr("Update thumbnails"));
    progress.step(tr("Save complete"));
    progress.end();
    return Result::Saved;
}

bool PageSaver::saveAs(const QImage& image, SaveTarget& target,
                       const std::function<void(SaveTarget&)>& reresolve)
{
    Session& session = m_context.session;
    Prompter& prompter = m_context.prompter;
    if (image.isNull()) {
        prompter.tell(noImage());
        return false;
    }
    QString dir = PagePaths::directoryPart(session.settings().get(keys::LastSaveAsPath));
    if (dir.isEmpty())
        dir = QDir::homePath() + QLatin1Char('/');
    const std::optional<QString> chosen = m_context.choosers.saveFile(
        {tr("Save As"),
         dir + QString::number(target.location.pageId) + QStringLiteral(".jpg"),
         {tr("All files (*)"), tr("JPEG files (*.jpg)")},
         1,
         QStringLiteral("jpg"),
         false});
    if (!chosen || chosen->isEmpty())
        return false;
    const QString name = *chosen;
    const QString home = session.home().path();
    if (isWithin(name, home)) {
        prompter.tell(tr("You cannot save an image to a path within the Quillmere "
                         "system.\nPlease select another location that is not within "
                         "the application path of:\n'%1'.")
                          .arg(home));
        return false;
    }
    if (QFile::exists(name) && !prompter.confirm(tr("'%1' exists.  Overwrite?").arg(name)))
        return false;
    if (!PagePaths::ensurePathExists(PagePaths::directoryPart(name))) {
        prompter.tell(
            tr("The directory '%1' could not be made.").arg(PagePaths::directoryPart(name)));
        return false;
    }
    const int quality = qualityFactor(session.settings(), false);
    if (target.mode == ViewerMode::Add && reresolve)
        reresolve(target);
    if (const Attempt<> written = ImageFile::writeJpeg(image, name, quality); !written) {
        prompter.tell(written.why());
        return false;
    }
    session.settings().set(keys::LastSaveAsPath, PagePaths::directoryPart(name));
    return true;
}

bool PageSaver::cancelNewPage(const PageLocation& location)
{
    if (!m_context.prompter.confirm(tr("Cancel saving this new page?")))
        return false;
    removeNewPage(location);
    return true;
}

void PageSaver::removeNewPage(const PageLocation& location)
{
    Session& session = m_context.session;
    const std::optional<PageRow> row = session.pages().page(location.pageId);
    const QString stored = row ? row->filename : QString();
    session.pages().deletePage(location.pageId);
    removeIfThere(session.paths().pagePath(location.pageId, stored));
    removeIfThere(session.paths().thumbPath(location.pageId, stored));
    if (m_context.navigator)
        m_context.navigator->refreshPages(location.documentId);
}

} // namespace qmr
