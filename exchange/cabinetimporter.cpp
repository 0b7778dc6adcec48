#include "exchange/cabinetimporter.h"

#include <QDate>
#include <QElapsedTimer>
#include <algorithm>

#include "core/progress.h"
#include "exchange/exchangelog.h"
#include "exchange/exchangequestions.h"
#include "exchange/nativename.h"
#include "exchange/thumbnailqueue.h"
#include "store/database.h"
#include "store/itemrules.h"
#include "store/itemtable.h"
#include "store/pagepaths.h"
#include "store/pageplace.h"
#include "store/session.h"
#include "store/storecolumns.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

// The rows of this many page files, or of this many milliseconds, share one commit: each
// commit waits for the disk, and a commit per file made a large import wait on it hundreds
// of times.
constexpr int kGroupFiles = 64;
constexpr int kGroupMs = 500;

const QString kUnfiledDrawer = QStringLiteral("Unfiled drawer");
const QString kUnfiledFolder = QStringLiteral("Unfiled folder");

QString inside(const QString& dir, const QString& name)
{
    return dir.endsWith(QLatin1Char('/')) ? dir + name : dir + QLatin1Char('/') + name;
}

// A file whose name says it is no image becomes a shortcut; the test is on the name alone.
bool isShortcutName(const QString& name)
{
    const QString lower = name.toLower();
    return !lower.endsWith(QLatin1String("jpg")) && !lower.endsWith(QLatin1String("jpeg")) &&
           !lower.endsWith(QLatin1String("bmp"));
}

// The item a directory of the walk makes is named as people read the directory's name.
QString itemName(const QString& path)
{
    return NativeName::display(PagePaths::filePart(path));
}

// A shortcut's type: the last three letters of its name, as the store keeps types.
QString shortcutType(const QString& name)
{
    return name.toLower().right(3).toUpper();
}

} // namespace

// Rows that belong together, with the page files copied for them. Committed, its new items
// are shown in the window; rolled back, the files go too, since the next rows would be given
// the same ids and find them in their place.
class CabinetImporter::Unit
{
public:
    explicit Unit(CabinetImporter& importer)
        : m_importer(importer), m_tx(importer.m_session.db()),
          m_items(int(importer.m_pendingItems.size())), m_files(int(importer.m_pendingFiles.size()))
    {
    }
    ~Unit()
    {
        if (!m_done)
            m_importer.dropPending(m_items, m_files);
    }
    Unit(const Unit&) = delete;
    Unit& operator=(const Unit&) = delete;

    void commit()
    {
        m_tx.commit();
        m_done = true;
        if (m_importer.m_session.db().transactionDepth() == 0)
            m_importer.flushPending();
    }

private:
    CabinetImporter& m_importer;
    Database::Transaction m_tx;
    int m_items;
    int m_files;
    bool m_done = false;
};

QString CabinetImporter::missingPathMessage(const QString& path)
{
    return tr("'%1' does not exist.").arg(path);
}

QString CabinetImporter::missingMarkerMessage()
{
    return tr("Missing QMR.TXT. This file designates the starting point of a "
              "previously exported file cabinet.");
}

CabinetImporter::CabinetImporter(Session& session, ExchangeFileSystem& fs,
                                 ExchangeQuestions& questions, NavigatorCallbacks* navigator)
    : m_session(session), m_fs(fs), m_questions(questions), m_navigator(navigator), m_reader(fs)
{
}

CabinetImporter::~CabinetImporter() = default;

void CabinetImporter::begin(Progress& progress)
{
    m_progress = &progress;
    m_report = ImportReport();
    m_halt = false;
    m_pendingItems.clear();
    m_pendingFiles.clear();
    m_touchedDocuments.clear();
    m_thumbs = std::make_unique<ThumbnailQueue>(m_session.home().path(), m_threads);
    m_group.reset();
    checkpoint();
}

void CabinetImporter::checkpoint()
{
    // Only between the walk's own groups of rows: one still open cannot be cut in two.
    if (m_session.db().transactionDepth() > 1)
        return;
    if (m_group && m_groupFiles < kGroupFiles && m_groupAge.elapsed() < kGroupMs)
        return;
    if (m_group) {
        const std::unique_ptr<Unit> group = std::move(m_group);
        group->commit();
    }
    m_group = std::make_unique<Unit>(*this);
    m_groupFiles = 0;
    m_groupAge.start();
}

void CabinetImporter::finish()
{
    // What came in before a stop or a failure is kept. A failure to keep it takes back the
    // group's rows and files together.
    if (m_group && m_session.db().transactionDepth() == 1) {
        const std::unique_ptr<Unit> group = std::move(m_group);
        try {
            group->commit();
        } catch (const StoreError& e) {
            if (m_report.error.isEmpty())
                m_report.error = e.message();
        }
    }
    m_group.reset();
    m_thumbs->waitForDone();
    m_thumbs.reset();
    if (m_navigator)
        for (const qint32 id : std::as_const(m_touchedDocuments))
            m_navigator->refreshPages(id);
}

bool CabinetImporter::halted() const
{
    return m_halt || m_progress->stopped();
}

void CabinetImporter::status(const QString& action, const QString& text)
{
    if (m_showStatus)
        m_showStatus(action, text);
}

void CabinetImporter::dropPending(int items, int files)
{
    m_pendingItems.resize(items);
    // The rows of these files are gone: wait for their thumbnails, then take both away.
    if (m_pendingFiles.size() > files)
        m_thumbs->waitForDone();
    while (m_pendingFiles.size() > files) {
        const QString file = m_pendingFiles.takeLast();
        // Left behind, the file is taken away by the home's tidying at a later start.
        if (!m_fs.remove(file))
            qCWarning(lcExchange).noquote()
                << "A copied page file whose row was not written stays for now:" << file;
    }
}

void CabinetImporter::flushPending()
{
    if (m_navigator)
        m_navigator->announce(m_pendingItems);
    m_pendingItems.clear();
    m_pendingFiles.clear();
}

// ---- the walk of an exchange directory ----------------------------------------------------

ImportReport CabinetImporter::importCabinet(qint32 cabinetId, const QString& path, int diskCount,
                                            Progress& progress)
{
    begin(progress);
    try {
        for (int disk = 1;; ++disk) {
            const int count = countImportFiles(path);
            progress.start(tr("Import files"), 1, qMax(1, count));
            if (count == 0 && !m_questions.importStructureOnly()) {
                m_report.declined = true;
                break;
            }
            importDisk(cabinetId, path);
            if (halted() || disk >= diskCount || !m_questions.insertImportDisk(disk + 1))
                break;
        }
    } catch (const StoreError& e) {
        m_report.error = e.message();
    }
    m_report.stopped = !m_halt && progress.stopped();
    finish();
    return m_report;
}

DirectoryListing CabinetImporter::walked(const QString& dir)
{
    DirectoryListing listing = m_fs.list(dir);
    for (const QString& link : std::as_const(listing.links))
        m_report.skipped << tr("'%1' is a link; it was not followed.")
                                .arg(NativeName::display(inside(dir, link)));
    return listing;
}

int CabinetImporter::countImportFiles(const QString& path)
{
    // The files the walk will step through, four levels down.
    const std::function<int(const QString&, int)> count = [&](const QString& dir, int level) {
        status(tr("Scan files"), NativeName::display(dir));
        const DirectoryListing listing = m_fs.list(dir);
        int files = 0;
        for (const QString& name : listing.files)
            files += ExchangeReader::isExchangeFile(name) ? 0 : 1;
        if (level < 3)
            for (const QString& below : listing.directories)
                files += count(inside(dir, below), level + 1);
        return files;
    };
    return count(path, 0);
}

void CabinetImporter::importDisk(qint32 cabinetId, const QString& path)
{
    const DirectoryListing listing = walked(path);
    const QStringList& files = listing.files;
    if (std::any_of(files.begin(), files.end(), ExchangeReader::isLooseFile)) {
        qint32 folderId = -1;
        {
            Unit unit(*this);
            const qint32 drawerId = getOrCreate(Level::Drawer, cabinetId, kUnfiledDrawer, true);
            if (drawerId >= 0)
                folderId = getOrCreate(Level::Folder, drawerId, kUnfiledFolder, true);
            unit.commit();
        }
        if (folderId >= 0)
            importDirectoryFiles(folderId, path, Level::Folder, pageFiles(path, files, {}));
    }
    applyDescription(Level::Cabinet, cabinetId, path, files, QStringLiteral("cabinet.txt"));
    for (const QString& drawer : listing.directories) {
        if (halted())
            return;
        importDrawer(cabinetId, inside(path, drawer));
    }
}

void CabinetImporter::importDrawer(qint32 cabinetId, const QString& path)
{
    const DirectoryListing listing = walked(path);
    const QStringList& files = listing.files;
    qint32 drawerId = -1;
    {
        Unit unit(*this);
        drawerId = getOrCreate(Level::Drawer, cabinetId, itemName(path), true);
        if (drawerId >= 0)
            applyDescription(Level::Drawer, drawerId, path, files, QStringLiteral("drawer.txt"));
        unit.commit();
    }
    if (drawerId < 0)
        return;
    if (std::any_of(files.begin(), files.end(), ExchangeReader::isLooseFile)) {
        qint32 folderId = -1;
        {
            Unit unit(*this);
            folderId = getOrCreate(Level::Folder, drawerId, kUnfiledFolder, true);
            unit.commit();
        }
        if (folderId >= 0)
            importDirectoryFiles(folderId, path, Level::Folder, pageFiles(path, files, {}));
    }
    for (const QString& folder : listing.directories) {
        if (halted())
            return;
        importFolder(drawerId, inside(path, folder));
    }
}

void CabinetImporter::importFolder(qint32 drawerId, const QString& path)
{
    const DirectoryListing listing = walked(path);
    const QStringList& files = listing.files;
    qint32 folderId = -1;
    {
        Unit unit(*this);
        folderId = getOrCreate(Level::Folder, drawerId, itemName(path), true);
        if (folderId >= 0)
            applyDescription(Level::Folder, folderId, path, files, QStringLiteral("folder.txt"));
        unit.commit();
    }
    if (folderId < 0)
        return;
    if (!files.isEmpty())
        importDirectoryFiles(folderId, path, Level::Folder, pageFiles(path, files, {}));
    for (const QString& document : listing.directories) {
        if (halted())
            return;
        importDocument(folderId, inside(path, document));
    }
}

void CabinetImporter::importDocument(qint32 folderId, const QString& path)
{
    // A deeper directory below a document is not looked at.
    const DirectoryListing listing = walked(path);
    Unit unit(*this);
    const qint32 documentId = getOrCreate(Level::Document, folderId, itemName(path), true);
    if (documentId >= 0) {
        applyDocument(documentId, path, listing.files);
        for (const QString& name : pageFiles(path, listing.files, {})) {
            if (halted())
                break;
            m_progress->step(tr("Import %1").arg(NativeName::display(name)));
            importFile(documentId, path, name);
        }
    }
    unit.commit();
    checkpoint();
}

// ---- items and manifests ------------------------------------------------------------------

qint32 CabinetImporter::getOrCreate(Level level, qint32 parentId, const QString& name,
                                    bool showStatus)
{
    if (showStatus)
        status(tr("Create ") + QString::fromLatin1(levelInfo(level).word).toLower(), name);
    ItemStore& items = m_session.items();
    const qint32 found = items.childNamed(level, parentId, name);
    if (found >= 0)
        return found;
    try {
        StoreColumns::check(ItemTable::of(level).name(), QStringLiteral("Name"), name);
    } catch (const StoreError& e) {
        problem(QStringLiteral("%1: %2").arg(name, e.message()));
        return -1;
    }
    const qint32 id = items.insertNamed(level, parentId, name);
    m_pendingItems << CreatedItem{level, parentId, id, name, QDate()};
    return id;
}

void CabinetImporter::applyDescription(Level level, qint32 id, const QString& dir,
                                       const QStringList& files, const QString& manifest)
{
    const QString name = ExchangeReader::findIn(files, manifest);
    if (name.isEmpty())
        return;
    const QString path = inside(dir, name);
    const std::optional<QString> description = m_reader.readDescription(path);
    if (!description) {
        problem(tr("Cannot read %1").arg(NativeName::display(path)));
        return;
    }
    m_session.items().setDescription(level, id, *description);
}

void CabinetImporter::applyDocument(qint32 documentId, const QString& dir, const QStringList& files)
{
    const QString name = ExchangeReader::findIn(files, QStringLiteral("document.txt"));
    if (name.isEmpty())
        return;
    const QString path = inside(dir, name);
    const std::optional<DocumentValues> values = m_reader.readDocument(path);
    if (!values) {
        problem(tr("Cannot read %1").arg(NativeName::display(path)));
        return;
    }
    std::optional<QDate> date;
    if (!values->date.isEmpty()) {
        date = ItemRules::parseDate(values->date);
        if (!date->isValid()) {
            problem(tr("%1: '%2' is not a date; the document keeps its own")
                        .arg(NativeName::display(path), values->date));
            date.reset();
        }
    }
    m_session.items().setDocumentManifest(documentId, date, values->description,
                                          ItemRules::leadingNumber(values->amount));
}

// ---- files --------------------------------------------------------------------------------

QStringList CabinetImporter::pageFiles(const QString& dir, const QStringList& files,
                                       const FileTypeFilter& filter)
{
    QStringList names;
    for (const QString& name : files) {
        const QString shown = NativeName::display(name);
        if (ExchangeReader::isExchangeFile(shown) || !filter.accepts(shown))
            continue;
        // A shortcut keeps its file's path as text, which holds no name that is not UTF-8:
        // neither the file's nor a directory's on the way.
        const QString path = inside(dir, name);
        if (isShortcutName(shown) && NativeName::hasKeptBytes(path)) {
            m_report.skipped << tr("'%1' has a path that is not UTF-8, which a "
                                   "shortcut cannot keep; it was not imported.")
                                    .arg(NativeName::display(path));
            continue;
        }
        names << name;
    }
    return names;
}

void CabinetImporter::importDirectoryFiles(qint32 parentId, const QString& dir, Level level,
                                           const QStringList& names)
{
    for (const QString& name : names) {
        if (halted())
            return;
        const QString shown = NativeName::display(name);
        m_progress->step(tr("Import %1").arg(shown));
        if (level == Level::Document) {
            importFile(parentId, dir, name);
        } else {
            // Each file a document of its own, named as the file, extension and all.
            Unit unit(*this);
            const qint32 documentId = getOrCreate(Level::Document, parentId, shown, false);
            if (documentId >= 0)
                importFile(documentId, dir, name);
            unit.commit();
        }
        checkpoint();
    }
}

void CabinetImporter::importFile(qint32 documentId, const QString& dir, const QString& name)
{
    const QString path = inside(dir, name);
    const qint64 length = m_fs.fileSize(path);
    if (length < 0) {
        problem(tr("Cannot read %1").arg(NativeName::display(path)));
        return;
    }
    // A page whose file cannot be taken in leaves no row behind (nor a document made for it).
    Unit unit(*this);
    bool newRow = false;
    const qint32 pageId =
        addImportedPage(documentId, NativeName::display(name), length, path, newRow);
    if (pageId < 0 || !copyImportedPageFile(path, pageId, newRow))
        return;
    unit.commit();
    m_touchedDocuments.insert(documentId);
    ++m_groupFiles;
}

qint32 CabinetImporter::addImportedPage(qint32 documentId, const QString& name, qint64 length,
                                        const QString& path, bool& newRow)
{
    PageStore& pages = m_session.pages();
    newRow = false;
    const qint32 existing = pages.pageNamed(documentId, name);
    if (existing >= 0)
        return existing;
    NewPage page;
    page.name = name;
    page.pageNumber = ExchangeReader::pageNumberOf(name).value_or(pages.nextNumber(documentId));
    page.fileSize = length;
    page.scanDate = QDate::currentDate();
    page.shortcut = isShortcutName(name);
    page.fileType = page.shortcut ? shortcutType(name) : QStringLiteral("JPG");
    if (page.shortcut)
        page.filename = path;
    try {
        StoreColumns::check(QStringLiteral("Page"), QStringLiteral("Name"), page.name);
        StoreColumns::check(QStringLiteral("Page"), QStringLiteral("Filename"), page.filename);
    } catch (const StoreError& e) {
        problem(QStringLiteral("%1: %2").arg(NativeName::display(path), e.message()));
        return -1;
    }
    const qint32 id = pages.insertPage(documentId, page);
    newRow = true;
    if (page.shortcut)
        ++m_report.shortcutsCreated;
    return id;
}

bool CabinetImporter::copyImportedPageFile(const QString& source, qint32 pageId, bool newRow)
{
    const std::optional<PageRow> row = m_session.pages().page(pageId);
    if (!row)
        return false;
    const PagePaths& paths = m_session.paths();
    const QString target = paths.pagePath(pageId, row->filename);
    if (row->shortcut) {
        // The file stays where it is; the page points at it and has no thumbnail.
        ++m_report.filesSkipped;
        return true;
    }
    const QString thumb = paths.thumbPath(pageId, row->filename);
    // A page that stood already keeps its file. A file at a new page's place is never its
    // copy: it was left by a run that ended before its rows were kept.
    if (!newRow && m_fs.isFile(target)) {
        ++m_report.filesSkipped;
        if (!m_fs.isFile(thumb))
            m_thumbs->add(target, thumb);
        return true;
    }
    const auto halt = [this](const QString& error) {
        m_report.error = error;
        m_halt = true;
        return false;
    };
    if (!m_fs.makePath(PagePaths::directoryPart(target)))
        return halt(tr("Cannot make the directory of %1").arg(target));
    if (newRow) {
        if (const QString taken = PagePlace::clear(m_session.pages(), paths, pageId, target);
            !taken.isEmpty()) {
            problem(taken);
            return halt(taken);
        }
    }
    QByteArray contents;
    const FileOutcome outcome = m_fs.copyIntoStore(source, target, &contents);
    if (!outcome.ok()) {
        // A file that became a link since the walk listed it is passed over like the others.
        if (outcome.kind == FileOutcome::Kind::Link) {
            m_report.skipped << outcome.message;
            return false;
        }
        // The store's own disk, or a file that appeared at the page's place: nothing further
        // can come in.
        problem(outcome.message);
        if (outcome.kind != FileOutcome::Kind::ReadFailed)
            return halt(outcome.message);
        return false;
    }
    ++m_report.filesImported;
    m_pendingFiles << target << thumb;
    // From the bytes just copied where they were small enough to hold: no second read.
    if (contents.isEmpty())
        m_thumbs->add(target, thumb);
    else
        m_thumbs->addFromData(contents, thumb);
    return true;
}

// ---- the files of one directory -----------------------------------------------------------

ImportReport CabinetImporter::importFiles(qint32 targetId, Level level, const QString& dir,
                                          const FileTypeFilter& filter, Progress& progress)
{
    begin(progress);
    try {
        progress.start(tr("Count files to import"), 1, 2);
        progress.step(tr("Counting files to import"));
        const QStringList names = pageFiles(dir, walked(dir).files, filter);
        progress.end();
        if (!names.isEmpty()) {
            progress.start(tr("Import files"), 1, int(names.size()));
            progress.showCancel();
            if (level == Level::Document) {
                Unit unit(*this);
                importDirectoryFiles(targetId, dir, level, names);
                unit.commit();
            } else {
                importDirectoryFiles(targetId, dir, Level::Folder, names);
            }
            m_report.stopped = !m_halt && progress.stopped();
            progress.end();
        }
    } catch (const StoreError& e) {
        m_report.error = e.message();
        progress.end();
    }
    finish();
    return m_report;
}

} // namespace qmr
