#include "exchange/cabinetexporter.h"

#include "core/progress.h"
#include "exchange/exchangequestions.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "store/session.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

// `name` inside `dir`; an empty name (one made only of dropped characters) is `dir` itself.
QString inside(const QString& dir, const QString& name)
{
    if (name.isEmpty())
        return dir;
    return dir.endsWith(QLatin1Char('/')) ? dir + name : dir + QLatin1Char('/') + name;
}

} // namespace

bool CabinetExporter::isWithinHome(const QString& path, const QString& home)
{
    return path.toUpper().contains(home.toUpper());
}

QString CabinetExporter::withinHomeMessage(const QString& home)
{
    return tr("You cannot export a cabinet to a path within the Quillmere system.\n"
              "Please select another location that is not within the application "
              "path of:\n'%1'.")
        .arg(home);
}

CabinetExporter::CabinetExporter(Session& session, ExchangeFileSystem& fs,
                                 ExchangeQuestions& questions, std::function<QDateTime()> now)
    : m_session(session), m_fs(fs), m_questions(questions), m_writer(fs), m_now(std::move(now))
{
}

bool CabinetExporter::halted() const
{
    return m_halt || m_progress->stopped();
}

void CabinetExporter::status(const QString& action, const QString& text)
{
    if (m_showStatus)
        m_showStatus(action, text);
}

ExportReport CabinetExporter::exportCabinet(qint32 cabinetId, const QString& path,
                                            Progress& progress)
{
    m_progress = &progress;
    m_report = ExportReport();
    m_disk = 1;
    m_trapping = true;
    m_halt = false;
    m_written.clear();
    try {
        progress.start(tr("Count files"), 1, 2);
        const ItemManifest cabinet = m_session.items().manifest(Level::Cabinet, cabinetId);
        if (cabinet.id >= 0) {
            progress.step(tr("Count files in cabinet"));
            const int pages = m_session.pages().countCabinetPages(cabinetId);
            // Counted as the design does; free space is never judged ahead of time.
            progress.step(tr("Count bytes in cabinet"));
            m_session.pages().sumCabinetBytes(cabinetId);
            if (pages > 0 || m_questions.exportEmptyCabinet()) {
                progress.start(tr("Preparing to export"), 1, pages + 1);
                walkCabinet(cabinetId, path);
            }
        }
    } catch (const StoreError& e) {
        m_report.error = e.message();
    }
    m_report.stopped = !m_halt && progress.stopped();
    progress.end();
    return m_report;
}

CabinetExporter::Next CabinetExporter::run(const std::function<FileOutcome()>& write)
{
    const FileOutcome outcome = write();
    if (outcome.ok())
        return Next::Go;
    if (outcome.kind == FileOutcome::Kind::NoDirectory || outcome.kind == FileOutcome::Kind::Link ||
        !m_trapping) {
        // Nothing can be written there, or nothing is to be read; the walk goes on.
        m_report.problems << outcome.message;
        return Next::Go;
    }
    if (outcome.kind != FileOutcome::Kind::DiskFull) {
        m_report.problems << outcome.message;
        m_report.error = outcome.message;
        m_halt = true;
        return Next::Halt;
    }
    // A full disk: the copy under way left nothing behind (it is written under another
    // name until it is whole). Another disk is asked for once; the same file goes there.
    m_trapping = false;
    ++m_disk;
    if (!m_questions.insertExportDisk(m_disk)) {
        m_report.diskRefused = true;
        m_report.problems << outcome.message;
        m_halt = true;
        return Next::Halt;
    }
    const FileOutcome again = write();
    if (!again.ok())
        m_report.problems << again.message;
    return Next::Go;
}

void CabinetExporter::makeDirectory(const QString& directory)
{
    status(tr("Create path"), directory);
    if (!m_fs.makePath(directory))
        m_report.problems << tr("Cannot make the directory %1").arg(directory);
}

CabinetExporter::Next CabinetExporter::writeManifest(const QString& path,
                                                     const std::function<FileOutcome()>& write)
{
    status(tr("Create file"), path);
    return run(write);
}

void CabinetExporter::walkCabinet(qint32 cabinetId, const QString& root)
{
    ItemStore& items = m_session.items();
    const ItemManifest cabinet = items.manifest(Level::Cabinet, cabinetId);
    const QString cabinetDir = inside(root, ExchangeWriter::cleanFileName(cabinet.name));
    makeDirectory(cabinetDir);
    const QDateTime now = m_now();
    const QString marker = inside(cabinetDir, ExchangeWriter::kMarkerFile);
    if (writeManifest(marker, [&] { return m_writer.writeMarkerFile(marker, now); }) == Next::Halt)
        return;
    const QString cabinetFile = inside(cabinetDir, ExchangeWriter::kCabinetFile);
    if (writeManifest(cabinetFile, [&] {
            return m_writer.writeDescriptionFile(cabinetFile, cabinet.description);
        }) == Next::Halt)
        return;

    for (const ItemManifest& drawer : items.childManifests(Level::Drawer, cabinetId)) {
        if (halted())
            return;
        const QString drawerDir = inside(cabinetDir, ExchangeWriter::cleanFileName(drawer.name));
        makeDirectory(drawerDir);
        const QString drawerFile = inside(drawerDir, ExchangeWriter::kDrawerFile);
        if (writeManifest(drawerFile, [&] {
                return m_writer.writeDescriptionFile(drawerFile, drawer.description);
            }) == Next::Halt)
            return;
        for (const ItemManifest& folder : items.childManifests(Level::Folder, drawer.id)) {
            if (halted())
                return;
            const QString folderDir = inside(drawerDir, ExchangeWriter::cleanFileName(folder.name));
            makeDirectory(folderDir);
            const QString folderFile = inside(folderDir, ExchangeWriter::kFolderFile);
            if (writeManifest(folderFile, [&] {
                    return m_writer.writeDescriptionFile(folderFile, folder.description);
                }) == Next::Halt)
                return;
            for (const ItemManifest& document : items.childManifests(Level::Document, folder.id)) {
                if (halted())
                    return;
                walkDocument(document, inside(folderDir, ExchangeWriter::documentDirectoryName(
                                                             document.name)));
            }
        }
    }
}

void CabinetExporter::walkDocument(const ItemManifest& document, const QString& directory)
{
    makeDirectory(directory);
    const QString documentFile = inside(directory, ExchangeWriter::kDocumentFile);
    if (writeManifest(documentFile, [&] {
            return m_writer.writeDocumentFile(documentFile, document);
        }) == Next::Halt)
        return;
    // The names already given in this directory (documents whose names fall together share
    // one), so that no page's file takes the place of another's or of a manifest.
    auto taken = m_written.find(directory);
    if (taken == m_written.end())
        taken = m_written.insert(directory, ExchangeWriter::reservedNames());
    const PagePaths& paths = m_session.paths();
    for (const PageRow& page : m_session.pages().pages(document.id)) {
        if (halted())
            return;
        const QString source = paths.pagePath(page.id, page.filename);
        QString stepText = tr("Copy document %1").arg(document.name);
        if (m_fs.isFile(source)) {
            // A page whose file has gone is left out and not counted.
            const QString fileName = PagePaths::filePart(source);
            stepText = tr("Copy file %1").arg(fileName);
            status(tr("Copy file"), fileName);
            const QString target = inside(
                directory, ExchangeWriter::distinctName(
                               ExchangeWriter::pageFileName(source, page.pageNumber), *taken));
            // The store's own files are never read through a link; a shortcut's file lies
            // wherever its owner keeps it.
            const LinkRule links = page.shortcut ? LinkRule::Follow : LinkRule::Refuse;
            // Counted only when written: a copy that failed and was passed over is named among
            // the problems, not among the pages copied.
            bool written = false;
            const Next next = run([&] {
                const FileOutcome outcome = m_writer.copyPageFile(source, target, links);
                written = outcome.ok();
                return outcome;
            });
            if (written)
                ++m_report.pagesCopied;
            if (next == Next::Halt)
                return;
        }
        m_progress->step(stepText);
    }
}

} // namespace qmr
