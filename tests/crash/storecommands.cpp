#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QRandomGenerator>
#include <deque>

#include "core/commandtarget.h"
#include "core/level.h"
#include "core/progress.h"
#include "core/runstate.h"
#include "core/settings.h"
#include "core/textfile.h"
#include "core/viewsettings.h"
#include "dialogs/itemdialog.h"
#include "exchange/cabinetimporter.h"
#include "exchange/diskfilesystem.h"
#include "exchange/promptedquestions.h"
#include "filing/filedrop.h"
#include "filing/itemmover.h"
#include "filing/pageclipboard.h"
#include "filing/pagefileadder.h"
#include "store/cipher.h"
#include "store/commandcontext.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "store/itemtable.h"
#include "store/pagestore.h"
#include "store/schema.h"
#include "store/session.h"
#include "storecommands.h"
#include "templates/drawertemplates.h"
#include "templates/samplecabinets.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/settargetview.h"

namespace qmr::crash {

namespace {

const QStringList kDrawerTemplates =
    QStringLiteral("DRW=Car|FLD=Repairs|DOC=Invoice|DOC=Registration|FLD=Loan||DRW=House|"
                   "FLD=Taxes|DOC=Assessment|FLD=Insurance|DOC=Policy|DOC=Claims|FLD=Utilities")
        .split(QLatin1Char('|'));
const QStringList kSmallOffice =
    QStringLiteral("CAB = Small Office| DRW = Clients|  FLD = Contracts|   DOC = Framework "
                   "agreement|  FLD = Letters| DRW = Accounts|  FLD = Bank|   DOC = Statements|"
                   "   DOC = Loan papers")
        .split(QLatin1Char('|'));
// Files on the desk, to be dropped and pasted: names that must reach the store as they are.
const QStringList kOutsideFiles = {QStringLiteral("Bob's scan.jpg"),
                                   QStringLiteral("the \"best\" 100%.bmp"),
                                   QStringLiteral("notes; 50% 'draft'.tif")};
// A directory of scans to import, each of its own colour so no two files have the same bytes.
const QString kImportDir = QStringLiteral("Import");

QString text(QRandomGenerator& rng, int length)
{
    static const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyz ÄéßO'%_;");
    QString out;
    for (int i = 0; i < length; ++i)
        out += letters.at(int(rng.bounded(int(letters.size()))));
    return out;
}

// Beside the homes, so that every home's shortcut pages name the same files.
QString outsideFile(const AppHome& home, const QString& name)
{
    return QFileInfo(home.path()).absoluteDir().filePath(QStringLiteral("Outside/") + name);
}

template <class T = QLineEdit> T* control(QWidget& dialog, const char* name)
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
    QDir().mkpath(outsideFile(home, kImportDir));
    QImage picture(320, 240, QImage::Format_RGB32);
    picture.fill(QColor(90, 140, 60));
    picture.save(outsideFile(home, kOutsideFiles.at(0)), "JPG");
    picture.save(outsideFile(home, kOutsideFiles.at(1)), "BMP");
    QFile tif(outsideFile(home, kOutsideFiles.at(2)));
    if (tif.open(QIODevice::WriteOnly))
        tif.write("II* a drawing kept where it is");
    for (int i = 0; i < 6; ++i) {
        QImage scan(800, 600, QImage::Format_RGB32);
        scan.fill(QColor::fromHsv(i * 60, 200, 220));
        scan.save(outsideFile(home, kImportDir + QStringLiteral("/scan %1.jpg").arg(i + 1)), "JPG");
    }
}

namespace {

struct Commands final : CommandStore
{
    Commands(const AppHome& h, quint32 s) : home(h), seed(s)
    {
        StoreSchema::openDatabase(db(), home);
        templates.loadDrawerTemplates();
    }

    AppHome home;
    quint32 seed;
    Settings settings{home.file(QStringLiteral("settings.conf"))};
    Session session{home, settings};
    RunState state;
    DrawerTemplates templates{home};
    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    SilentProgress progress;
    ViewSettings view{settings};
    // Commands hold their context by reference: each one handed out is kept here.
    std::deque<CommandContext> contexts;

    Database& db() override { return session.db(); }
    const CommandContext& context()
    {
        return contexts.emplace_back(
            CommandContext{session, state, prompter, choosers, progress, view});
    }

    // A random row's first value from `select` (rows in its order), or -1 when it has none.
    qint32 pickFrom(const QString& select, QRandomGenerator& rng)
    {
        const int count = db().scalar("SELECT COUNT(*) FROM (" + select + ")").toInt();
        return count < 1
                   ? -1
                   : db().scalar(select + " LIMIT 1 OFFSET ?", {int(rng.bounded(count))}).toInt();
    }
    qint32 pick(Level level, QRandomGenerator& rng)
    {
        const ItemTable& t = ItemTable::of(level);
        return pickFrom(QStringLiteral("SELECT %1 FROM %2 ORDER BY %1").arg(t.id(), t.name()), rng);
    }

    static QString accepted(const ItemDialog& dialog, const char* otherwise)
    {
        return dialog.result() == QDialog::Accepted ? QString() : QString::fromLatin1(otherwise);
    }

    QString newItem(Level level, qint32 parentId, int step, QRandomGenerator& rng)
    {
        ItemDialog dialog(level, context());
        dialog.setAdd(parentId);
        const auto set = [&](const char* name, const QString& value) {
            control(dialog, name)->setText(value);
        };
        if (level == Level::Drawer)
            dialog.populateTemplates(
                templates.names(), [this](const QString& name, qint32 drawerId, ItemStore& items) {
                    return templates.applyDrawerTemplate(name, drawerId, items);
                });
        set("txtName", QStringLiteral("%1 %2 %3")
                           .arg(ItemTable::of(level).name())
                           .arg(step)
                           .arg(text(rng, int(rng.bounded(0, 20)))));
        control<QPlainTextEdit>(dialog, "txtDescription")
            ->setPlainText(text(rng, rng.bounded(0, 200)));
        if (level == Level::Cabinet) {
            set("txtPassword", text(rng, rng.bounded(0, 3) * 5));
            if (rng.bounded(2) == 1) {
                control<QRadioButton>(dialog, "optStorage1")->click();
                set("txtSaveTo", QStringLiteral("/srv/scans/%1").arg(step));
            }
        } else if (level == Level::Drawer) {
            if (QComboBox* box = control<QComboBox>(dialog, "cboTemplate"))
                box->setCurrentIndex(int(rng.bounded(box->count())));
        } else if (level == Level::Folder) {
            set("txtEmail", QStringLiteral("f%1@example.org").arg(step));
        } else {
            set("txtDateOnDocument",
                QDate(2000, 1, 1).addDays(rng.bounded(9000)).toString("M/d/yyyy"));
            set("txtAmount", QString::number(rng.bounded(1000000) / 100.0, 'f', 2));
        }
        dialog.cmdOK();
        return accepted(dialog, "the new item was not taken");
    }

    QString properties(Level level, qint32 id, int step, QRandomGenerator& rng)
    {
        ItemDialog dialog(level, context());
        if (!dialog.setEdit(id))
            return QStringLiteral("item %1 has no properties").arg(id);
        control(dialog, "txtName")
            ->setText(QStringLiteral("%1 %2 edited").arg(ItemTable::of(level).name()).arg(step));
        control<QPlainTextEdit>(dialog, "txtDescription")
            ->setPlainText(text(rng, rng.bounded(0, 400)));
        if (level == Level::Cabinet)
            control(dialog, "txtPassword")->setText(text(rng, rng.bounded(0, 11)));
        if (level == Level::Document)
            control(dialog, "txtAmount")->setText(QString::number(rng.bounded(100000)));
        dialog.cmdOK();
        return accepted(dialog, "the properties were not taken");
    }

    // A batch of page rows in one transaction, as a batch of scanned pages is written.
    void addPages(qint32 documentId, QRandomGenerator& rng)
    {
        Database::Transaction tx(db());
        for (int i = rng.bounded(1, 7); i > 0; --i)
            db().execute(QStringLiteral("INSERT INTO Page (DocumentId, PageNumber, FileSize, "
                                        "ScanDate, Filetype) VALUES (?, ?, ?, ?, 'JPG')"),
                         {documentId, int(rng.bounded(1, 21)), int(rng.bounded(1000, 900000)),
                          QDateTime(QDate(2020, 1, 1).addDays(rng.bounded(2000)), QTime(12, 0))});
        tx.commit();
    }

    void repaginate(QRandomGenerator& rng)
    {
        if (const qint32 id = pickFrom(
                "SELECT DocumentId FROM Page GROUP BY DocumentId ORDER BY DocumentId", rng);
            id >= 0)
            PageStore(db()).repaginateDocument(id, ItemStore(db()).item(Level::Document, id).name,
                                               progress);
    }

    void sampleCabinet(QRandomGenerator& rng)
    {
        SampleCabinets samples(home, db(), nullptr);
        const QStringList names = samples.sampleNames();
        samples.createSampleCabinet(names.at(int(rng.bounded(int(names.size())))));
    }

    // The moves of the drag. Its own choosers, given the right password each time: which
    // cabinets an earlier command opened is not in the store, and a restarted run does not
    // know it.
    void move(QRandomGenerator& rng)
    {
        test::ScriptedChoosers moveChoosers;
        const CommandContext moving{session, state, prompter, moveChoosers, progress, view};
        PageFileAdder files(moving);
        ItemMover mover(moving, files, nullptr);
        const Level level = Level(rng.bounded(1, 5));
        const qint32 id = pick(level, rng);
        const qint32 target = pick(*parentLevel(level), rng);
        if (id < 0 || target < 0)
            return;
        if (level == Level::Drawer) {
            moveChoosers.queuePassword(
                decryptText(ItemStore(db()).item(Level::Cabinet, target).password, Cipher::key()));
            mover.moveDrawer(id, target);
        } else if (level == Level::Folder) {
            mover.moveFolder(id, target);
        } else if (level == Level::Document) {
            mover.moveDocument(id, target);
        } else {
            mover.movePage(id, target, DropSource::PageList);
        }
    }

    void pasteCutPages(QRandomGenerator& rng)
    {
        test::SetTargetView targetView;
        CommandTarget target(state.selection(), targetView);
        CommandContext pasting = context();
        pasting.target = &target;
        PageClipboard clipboard(pasting);
        for (int i = int(rng.bounded(1, 5)); i > 0; --i)
            if (const qint32 page = pick(Level::Page, rng);
                page >= 0 && !targetView.pages.contains(page))
                targetView.pages << page;
        const qint32 document = pick(Level::Document, rng);
        if (targetView.pages.isEmpty() || document < 0)
            return;
        clipboard.cut();
        targetView.tree = NodeKey::of(Level::Document, document);
        clipboard.pasteIntoDocument();
    }

    // A file from outside becomes a page: dropped on a folder (its new document and the page
    // are one write), added to a document, or pasted into one.
    void addFile(QRandomGenerator& rng)
    {
        const CommandContext adding = context();
        PageFileAdder files(adding);
        const QString file =
            outsideFile(home, kOutsideFiles.at(int(rng.bounded(int(kOutsideFiles.size())))));
        const int how = int(rng.bounded(3));
        if (how == 0) {
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

    void importFiles(QRandomGenerator& rng)
    {
        const qint32 document = pick(Level::Document, rng);
        if (document < 0)
            return;
        DiskFileSystem fs;
        PromptedQuestions questions(prompter);
        const ImportReport report =
            CabinetImporter(session, fs, questions)
                .importFiles(document, Level::Document, outsideFile(home, kImportDir),
                             FileTypeFilter(), progress);
        if (!report.error.isEmpty() || !report.problems.isEmpty())
            prompter.tell(report.error + report.problems.join(QLatin1Char(' ')));
    }

    QString run(int step) override
    {
        QRandomGenerator rng(seed * 2654435761u + quint32(step));
        prompter.reset();
        const int kind = int(rng.bounded(120));
        QString problem;
        if (kind < 8) {
            problem = newItem(Level::Cabinet, -1, step, rng);
        } else if (kind < 56) {
            // A drawer, folder or document below a random parent; a cabinet when there is none.
            const Level level = kind < 22   ? Level::Drawer
                                : kind < 37 ? Level::Folder
                                            : Level::Document;
            const qint32 parent = pick(*parentLevel(level), rng);
            problem = parent < 0 ? newItem(Level::Cabinet, -1, step, rng)
                                 : newItem(level, parent, step, rng);
        } else if (kind < 68) {
            const Level level = Level(rng.bounded(4));
            if (const qint32 id = pick(level, rng); id >= 0)
                problem = properties(level, id, step, rng);
        } else if (kind < 78) {
            if (const qint32 document = pick(Level::Document, rng); document >= 0)
                addPages(document, rng);
        } else if (kind < 85) {
            if (const qint32 page = pick(Level::Page, rng); page >= 0)
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
        if (!prompter.seen().isEmpty())
            return QStringLiteral("the command said: ") +
                   prompter.seen().join(QStringLiteral(" | "));
        return problem;
    }
};

} // namespace

std::unique_ptr<CommandStore> CommandStore::open(const AppHome& home, quint32 seed)
{
    return std::make_unique<Commands>(home, seed);
}

} // namespace qmr::crash
