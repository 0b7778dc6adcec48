#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>

#include <QDir>
#include <QFileInfo>
#include <QImage>

#include "core/commandtarget.h"
#include "core/textfile.h"
#include "dialogs/itemdialog.h"
#include "exchange/cabinetimporter.h"
#include "exchange/diskfilesystem.h"
#include "exchange/promptedquestions.h"
#include "filing/filedrop.h"
#include "filing/itemmover.h"
#include "filing/pageclipboard.h"
#include "filing/pagefileadder.h"
#include "store/cipher.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "store/itemtable.h"
#include "store/pagestore.h"
#include "store/schema.h"
#include "storecommands.h"
#include "tests/support/settargetview.h"
#include "templates/samplecabinets.h"

namespace qmr::crash {

namespace {

const QStringList kDrawerTemplates = {
    QStringLiteral("DRW=Car"),        QStringLiteral("FLD=Repairs"),
    QStringLiteral("DOC=Invoice"),    QStringLiteral("DOC=Registration"),
    QStringLiteral("FLD=Loan"),       QStringLiteral(""),
    QStringLiteral("DRW=House"),      QStringLiteral("FLD=Taxes"),
    QStringLiteral("DOC=Assessment"), QStringLiteral("FLD=Insurance"),
    QStringLiteral("DOC=Policy"),     QStringLiteral("DOC=Claims"),
    QStringLiteral("FLD=Utilities"),
};

const QStringList kSmallOffice = {
    QStringLiteral("CAB = Small Office"),   QStringLiteral(" DRW = Clients"),
    QStringLiteral("  FLD = Contracts"),    QStringLiteral("   DOC = Framework agreement"),
    QStringLiteral("  FLD = Letters"),      QStringLiteral(" DRW = Accounts"),
    QStringLiteral("  FLD = Bank"),         QStringLiteral("   DOC = Statements"),
    QStringLiteral("   DOC = Loan papers"),
};

QString text(QRandomGenerator& rng, int length)
{
    static const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyz ÄéßO'%_;");
    QString out;
    for (int i = 0; i < length; ++i)
        out += letters.at(int(rng.bounded(int(letters.size()))));
    return out;
}

// Files on the desk, to be dropped and pasted: names that must reach the store as they are.
const QStringList kOutsideFiles = {
    QStringLiteral("Bob's scan.jpg"),
    QStringLiteral("the \"best\" 100%.bmp"),
    QStringLiteral("notes; 50% 'draft'.tif"),
};

// A directory of scans to import, each of its own colour so no two files have the same bytes.
const QString kImportDir = QStringLiteral("Import");
constexpr int kImportFiles = 6;

// Beside the homes, so that every home's shortcut pages name the same files.
QString outsideFile(const AppHome& home, const QString& name)
{
    return QFileInfo(home.path()).absoluteDir().filePath(QStringLiteral("Outside/") + name);
}

template <class T> T* control(QWidget& dialog, const char* name)
{
    return dialog.findChild<T*>(QLatin1String(name));
}

} // namespace

void prepareHome(const AppHome& home)
{
    home.ensureExists();
    TextFile::writeLines(home.file(QStringLiteral("Drawer.txt")), kDrawerTemplates);
    TextFile::writeLines(home.file(QStringLiteral("Sample.txt")),
                         SampleCabinets::defaultText() + kSmallOffice);
    QDir().mkpath(QFileInfo(outsideFile(home, kOutsideFiles.at(0))).path());
    QImage picture(320, 240, QImage::Format_RGB32);
    picture.fill(QColor(90, 140, 60));
    picture.save(outsideFile(home, kOutsideFiles.at(0)), "JPG");
    picture.save(outsideFile(home, kOutsideFiles.at(1)), "BMP");
    QFile tif(outsideFile(home, kOutsideFiles.at(2)));
    if (tif.open(QIODevice::WriteOnly))
        tif.write("II* a drawing kept where it is");
    const QString scans = outsideFile(home, kImportDir);
    QDir().mkpath(scans);
    for (int i = 0; i < kImportFiles; ++i) {
        QImage scan(800, 600, QImage::Format_RGB32);
        scan.fill(QColor::fromHsv(i * 60, 200, 220));
        scan.save(scans + QStringLiteral("/scan %1.jpg").arg(i + 1), "JPG");
    }
}

CommandStore::CommandStore(const AppHome& home, quint32 seed)
    : m_home(home), m_seed(seed), m_settings(home.file(QStringLiteral("settings.conf"))),
      m_session(home, m_settings), m_templates(home)
{
    StoreSchema::openDatabase(m_session.db(), m_home);
    m_templates.loadDrawerTemplates();
}

CommandStore::~CommandStore() = default;

const CommandContext& CommandStore::context()
{
    return m_contexts.emplace_back(
        CommandContext{m_session, m_prompter, m_choosers, m_progress, m_view});
}

qint32 CommandStore::pick(Level level, QRandomGenerator& rng)
{
    const ItemTable& t = ItemTable::of(level);
    const int count = ItemStore(db()).count(level);
    if (count < 1)
        return -1;
    return db()
        .scalar(
            QStringLiteral("SELECT %1 FROM %2 ORDER BY %1 LIMIT 1 OFFSET ?").arg(t.id(), t.name()),
            {int(rng.bounded(count))})
        .toInt();
}

QString CommandStore::newItem(Level level, qint32 parentId, int step, QRandomGenerator& rng)
{
    ItemDialog dialog(level, context());
    dialog.setAdd(parentId);
    if (level == Level::Drawer)
        dialog.populateTemplates(m_templates.names(),
                                 [this](const QString& name, qint32 drawerId, ItemStore& items) {
                                     return m_templates.applyDrawerTemplate(name, drawerId, items);
                                 });
    control<QLineEdit>(dialog, "txtName")
        ->setText(QStringLiteral("%1 %2 %3")
                      .arg(ItemTable::of(level).name())
                      .arg(step)
                      .arg(text(rng, int(rng.bounded(0, 20)))));
    control<QPlainTextEdit>(dialog, "txtDescription")->setPlainText(text(rng, rng.bounded(0, 200)));
    switch (level) {
    case Level::Cabinet:
        control<QLineEdit>(dialog, "txtPassword")->setText(text(rng, rng.bounded(0, 3) * 5));
        if (rng.bounded(2) == 1) {
            control<QRadioButton>(dialog, "optStorage1")->click();
            control<QLineEdit>(dialog, "txtSaveTo")
                ->setText(QStringLiteral("/srv/scans/%1").arg(step));
        }
        break;
    case Level::Drawer:
        if (QComboBox* box = control<QComboBox>(dialog, "cboTemplate"))
            box->setCurrentIndex(int(rng.bounded(box->count())));
        break;
    case Level::Folder:
        control<QLineEdit>(dialog, "txtEmail")
            ->setText(QStringLiteral("f%1@example.org").arg(step));
        break;
    default:
        control<QLineEdit>(dialog, "txtDateOnDocument")
            ->setText(QDate(2000, 1, 1).addDays(rng.bounded(9000)).toString("M/d/yyyy"));
        control<QLineEdit>(dialog, "txtAmount")
            ->setText(QString::number(rng.bounded(1000000) / 100.0, 'f', 2));
        break;
    }
    dialog.cmdOK();
    return dialog.result() == QDialog::Accepted ? QString()
                                                : QStringLiteral("the new item was not taken");
}

QString CommandStore::properties(Level level, qint32 id, int step, QRandomGenerator& rng)
{
    ItemDialog dialog(level, context());
    if (!dialog.setEdit(id))
        return QStringLiteral("item %1 has no properties").arg(id);
    control<QLineEdit>(dialog, "txtName")
        ->setText(QStringLiteral("%1 %2 edited").arg(ItemTable::of(level).name()).arg(step));
    control<QPlainTextEdit>(dialog, "txtDescription")->setPlainText(text(rng, rng.bounded(0, 400)));
    if (level == Level::Cabinet)
        control<QLineEdit>(dialog, "txtPassword")->setText(text(rng, rng.bounded(0, 11)));
    if (level == Level::Document)
        control<QLineEdit>(dialog, "txtAmount")->setText(QString::number(rng.bounded(100000)));
    dialog.cmdOK();
    return dialog.result() == QDialog::Accepted ? QString()
                                                : QStringLiteral("the properties were not taken");
}

void CommandStore::addPages(qint32 documentId, QRandomGenerator& rng)
{
    // Pages arrive by scanning and importing; until those write here, a batch of page rows
    // stands for them, in one transaction as a batch of pages would be.
    Database::Transaction tx(db());
    const int count = rng.bounded(1, 7);
    for (int i = 0; i < count; ++i)
        db().execute(QStringLiteral("INSERT INTO Page (DocumentId, PageNumber, FileSize, "
                                    "ScanDate, Filetype) VALUES (?, ?, ?, ?, 'JPG')"),
                     {documentId, int(rng.bounded(1, 21)), int(rng.bounded(1000, 900000)),
                      QDateTime(QDate(2020, 1, 1).addDays(rng.bounded(2000)), QTime(12, 0))});
    tx.commit();
}

void CommandStore::repaginate(QRandomGenerator& rng)
{
    const int documents =
        db().scalar(QStringLiteral("SELECT COUNT(DISTINCT DocumentId) FROM Page")).toInt();
    if (documents < 1)
        return;
    const qint32 id = db().scalar(QStringLiteral("SELECT DocumentId FROM Page GROUP BY DocumentId "
                                                 "ORDER BY DocumentId LIMIT 1 OFFSET ?"),
                                  {int(rng.bounded(documents))})
                          .toInt();
    PageStore(db()).repaginateDocument(id, ItemStore(db()).item(Level::Document, id).name,
                                       m_progress);
}

void CommandStore::sampleCabinet(QRandomGenerator& rng)
{
    SampleCabinets samples(m_home, db(), nullptr);
    const QStringList names = samples.sampleNames();
    samples.createSampleCabinet(names.at(int(rng.bounded(int(names.size())))));
}

void CommandStore::move(QRandomGenerator& rng)
{
    // Its own choosers, given the right password each time: which cabinets an earlier command
    // opened is not in the store, and a restarted run does not know it.
    test::ScriptedChoosers choosers;
    const CommandContext moving{m_session, m_prompter, choosers, m_progress, m_view};
    PageFileAdder files(moving);
    ItemMover mover(moving, files, nullptr);
    const Level level = Level(rng.bounded(1, 5));
    const qint32 id = pick(level, rng);
    const qint32 target = pick(*parentLevel(level), rng);
    if (id < 0 || target < 0)
        return;
    switch (level) {
    case Level::Drawer:
        choosers.queuePassword(
            decryptText(ItemStore(db()).item(Level::Cabinet, target).password, Cipher::key()));
        mover.moveDrawer(id, target);
        break;
    case Level::Folder:
        mover.moveFolder(id, target);
        break;
    case Level::Document:
        mover.moveDocument(id, target);
        break;
    default:
        mover.movePage(id, target, DropSource::PageList);
        break;
    }
}

void CommandStore::pasteCutPages(QRandomGenerator& rng)
{
    test::SetTargetView view;
    CommandTarget target(m_session.selection(), view);
    CommandContext pasting = context();
    pasting.target = &target;
    PageClipboard clipboard(pasting);
    for (int i = int(rng.bounded(1, 5)); i > 0; --i)
        if (const qint32 page = pick(Level::Page, rng); page >= 0 && !view.pages.contains(page))
            view.pages << page;
    const qint32 document = pick(Level::Document, rng);
    if (view.pages.isEmpty() || document < 0)
        return;
    clipboard.cut();
    view.tree = NodeKey::of(Level::Document, document);
    clipboard.pasteIntoDocument();
}

void CommandStore::addFile(QRandomGenerator& rng)
{
    const CommandContext adding = context();
    PageFileAdder files(adding);
    files.setToday(QDate(2026, 5, 1));
    const QString file =
        outsideFile(m_home, kOutsideFiles.at(int(rng.bounded(int(kOutsideFiles.size())))));
    const int how = int(rng.bounded(3));
    if (how == 0) {
        // A drop on a folder: its new document and the page are one write.
        ItemMover mover(adding, files, nullptr);
        const qint32 folder = pick(Level::Folder, rng);
        NodeKey target = NodeKey::of(Level::Folder, folder);
        if (folder >= 0)
            mover.processDrop(DropSource::Outside, QStringLiteral("PAG"), target, file);
    } else if (const qint32 document = pick(Level::Document, rng); document >= 0) {
        if (how == 1) {
            files.begin();
            files.addPageFromFile(file, document);
        } else {
            FileDrop(adding, files).pasteFiles({file}, document);
        }
    }
    files.finish();
}

void CommandStore::importFiles(QRandomGenerator& rng)
{
    const qint32 document = pick(Level::Document, rng);
    if (document < 0)
        return;
    DiskFileSystem fs;
    PromptedQuestions questions(m_prompter);
    CabinetImporter importer(m_session, fs, questions);
    const ImportReport report = importer.importFiles(
        document, Level::Document, outsideFile(m_home, kImportDir), FileTypeFilter(), m_progress);
    if (!report.error.isEmpty() || !report.problems.isEmpty())
        m_prompter.tell(report.error + report.problems.join(QLatin1Char(' ')));
}

QString CommandStore::run(int step)
{
    QRandomGenerator rng(m_seed * 2654435761u + quint32(step));
    m_prompter.reset();
    const int kind = int(rng.bounded(120));
    QString problem;
    if (kind < 8) {
        problem = newItem(Level::Cabinet, -1, step, rng);
    } else if (kind < 56) {
        // A drawer, folder or document below a random parent; a cabinet when there is none.
        const Level level = kind < 22 ? Level::Drawer : kind < 37 ? Level::Folder : Level::Document;
        const qint32 parent = pick(*parentLevel(level), rng);
        problem =
            parent < 0 ? newItem(Level::Cabinet, -1, step, rng) : newItem(level, parent, step, rng);
    } else if (kind < 68) {
        const Level level = Level(rng.bounded(4));
        const qint32 id = pick(level, rng);
        if (id >= 0)
            problem = properties(level, id, step, rng);
    } else if (kind < 78) {
        const qint32 document = pick(Level::Document, rng);
        if (document >= 0)
            addPages(document, rng);
    } else if (kind < 85) {
        const qint32 page = pick(Level::Page, rng);
        if (page >= 0)
            PageStore(db()).setPageNumber(page, int(rng.bounded(1, 60)));
    } else if (kind < 95) {
        repaginate(rng);
    } else if (kind < 100) {
        sampleCabinet(rng);
    } else if (kind < 108) {
        move(rng);
    } else if (kind < 112) {
        pasteCutPages(rng);
    } else if (kind < 116) {
        addFile(rng);
    } else {
        importFiles(rng);
    }
    if (!m_prompter.seen().isEmpty())
        return QStringLiteral("the command said: ") + m_prompter.seen().join(QStringLiteral(" | "));
    return problem;
}

} // namespace qmr::crash
