#include <QLineEdit>
#include <unistd.h>

#include "core/settings.h"
#include "tests/mail/mailharness.h"
#include "tests/support/testrunner.h"
#include "viewerharness.h"

using namespace qmr;
using test::fetch;
using test::ViewerHarness;

namespace {

using Answer = Prompter::Answer;

const QString kAutoAssign =
    QStringLiteral("No filename entered.  Do you want to auto-assign a filename?");
const QString kRenamed = QStringLiteral("You have renamed this file.  Do you want to delete the "
                                        "old filename?\nOld filename: '%1'");
const QString kExists =
    QStringLiteral("The file named '%1' aready exists.\nDo you want to overwrite this file?");

QLineEdit* filename(QWidget* w)
{
    return w->findChild<QLineEdit*>(QStringLiteral("txtFilename"));
}

// A row's text with its place holders filled: %1 the storage directory, %2 the home.
QString fill(QString text, const QString& dir, const QString& home = QString())
{
    return text.replace(QLatin1String("%1"), dir).replace(QLatin1String("%2"), home);
}

// The questions of a row, filled: "text=answer" pairs, answers "Y", "N", "C" or "OK".
void expect(test::ScriptedPrompter& prompter, const QStringList& script, const QString& dir = {},
            const QString& home = {})
{
    for (const QString& line : script) {
        const QString answer = line.section(QLatin1Char('='), -1);
        prompter.expect(fill(line.section(QLatin1Char('='), 0, -2), dir, home),
                        answer == "Y"   ? Answer::Yes
                        : answer == "N" ? Answer::No
                        : answer == "C" ? Answer::Cancel
                                        : Answer::Ok);
    }
}

// Drops the rights of the super-user for a scope, so that a read-only directory is one.
struct AsOrdinaryUser
{
    bool dropped = geteuid() == 0 && seteuid(65534) == 0;
    ~AsOrdinaryUser()
    {
        if (dropped && seteuid(0) != 0)
            qFatal("cannot take back the rights dropped for the test");
    }
};

} // namespace

class TestPageSave : public QObject
{
    Q_OBJECT
private slots:
    // A page of a cabinet that keeps its pages under names in a directory, saved under the
    // name typed. A save that is stopped leaves the store and the files as they were.
    void save_data()
    {
        // typed %1: the storage directory
        // shown: the name box afterwards; stored when saved
        test::columns<QString, QStringList, bool, QString, bool>(
            {"typed", "script", "saved", "shown", "oldKept"});
        const auto row = [](const char* tag, const QString& typed, const QStringList& script,
                            bool saved, const QString& shown, bool oldKept = true) {
            test::row(tag, typed, script, saved, shown, oldKept);
        };
        const QString renamedNo = kRenamed.arg("%1/first.jpg") + "=N";
        row("directory only", "%1/", {"Please enter a filename.=OK"}, false, "%1/");
        row("characters no path holds", "%1/a*b?.jpg",
            {"The following characters are not allowed:\n\\ / : * ? \" < > | .=OK"}, false,
            "%1/ab.jpg");
        row("another extension", "%1/report.tif",
            {"The file extension must be .JPG (please change filename).=OK"}, false,
            "%1/report.tif");
        row("no name, no auto-assign", "", {kAutoAssign + "=N"}, false, "");
        row("overwrite refused", "%1/other.jpg", {kExists.arg("%1/other.jpg") + "=N"}, false,
            "%1/other.jpg");
        row("the same name again", "%1/first.jpg", {}, true, "%1/first.jpg");
        row("auto-assigned", "", {kAutoAssign + "=Y"}, true, ""); // stored at the computed path
        row("renamed, old kept", "%1/report", {renamedNo}, true, "%1/report.jpg");
        row("renamed, old deleted", "%1/report.jpg", {kRenamed.arg("%1/first.jpg") + "=Y"}, true,
            "%1/report.jpg", false);
        row("capital extension passes", "%1/report.JPG", {renamedNo}, true, "%1/report.JPG");
        row("a bare name goes to the storage directory", "report", {renamedNo}, true,
            "%1/report.jpg");
        row("overwriting another file", "%1/other.jpg",
            {kExists.arg("%1/other.jpg") + "=Y", renamedNo}, true, "%1/other.jpg");
        row("a dotted directory on the way", "%1/my.scans/report", {renamedNo}, true,
            "%1/my.scans/report.jpg");
    }
    void save()
    {
        auto [typed, script, saved, shown, oldKept] =
            fetch<QString, QStringList, bool, QString, bool>("typed", "script", "saved", "shown",
                                                             "oldKept");
        ViewerHarness h;
        const QString dir = h.outside.path();
        QVERIFY(ViewerHarness::writePicture(h.outsideFile("other.jpg"), {50, 50}, Qt::red));
        QVERIFY(QDir(dir).mkpath("Thumbs"));
        QVERIFY(ViewerHarness::writePicture(dir + "/Thumbs/first.jpg", {10, 10}, Qt::red));
        const QByteArray other = h.fileBytes(h.outsideFile("other.jpg"));
        const QByteArray first = h.fileBytes(h.outsideFile("first.jpg"));
        const PageRow before = h.row(h.named);
        auto w = h.openViewer(h.named);
        w->cmdRotateClockwise();
        filename(w.get())->setText(fill(typed, dir));
        expect(h.prompter, script, dir);
        QCOMPARE(w->save() == PageSaver::Result::Saved, saved);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(filename(w.get())->text(), fill(shown, dir));
        // Nothing saved: the turn can still be taken back.
        QCOMPARE(w->pageImage().canUndo(), !saved);
        const PageRow row = h.row(h.named);
        if (!saved) {
            QCOMPARE(row.filename, before.filename);
            QCOMPARE(row.fileSize, before.fileSize);
            QCOMPARE(h.fileBytes(h.outsideFile("first.jpg")), first);
            QCOMPARE(h.fileBytes(h.outsideFile("other.jpg")), other);
            QCOMPARE(QDir(dir).entryList(QDir::Files).size(), 2);
            return;
        }
        const QString target =
            shown.isEmpty() ? h.session->paths().computedPagePath(h.named) : fill(shown, dir);
        QCOMPARE(row.filename, fill(shown, dir));
        QCOMPARE(row.fileSize, QFileInfo(target).size());
        QCOMPARE(QImage(target).size(), QSize(400, 600));
        QCOMPARE(w->currentFile(), target);
        // The thumbnail of a save is the page reduced, without a tile.
        QCOMPARE(QImage(h.session->paths().thumbPath(h.named, row.filename)).size(),
                 QSize(67, 100));
        if (target != h.outsideFile("first.jpg")) {
            QCOMPARE(QFile::exists(h.outsideFile("first.jpg")), oldKept);
            QCOMPARE(QFile::exists(dir + "/Thumbs/first.jpg"), oldKept);
        }
        QVERIFY(h.nav.calls.contains(QString("PAGES%1").arg(h.namedDocument)));
    }

    void quality_data()
    {
        // kind: TWAINImageType
        test::columns<bool, QString, int>({"add", "kind", "factor"});
        test::row("re-save of a document page: the picture's quality", false, "document", 30);
        test::row("new document page", true, "document", 50);
        test::row("new picture", true, "picture", 30);
    }
    void quality()
    {
        auto [add, kind, factor] = fetch<bool, QString, int>("add", "kind", "factor");
        ViewerHarness h;
        h.home.settings().set(keys::ImageType, kind);
        const QImage image = ViewerHarness::picture({320, 240}, Qt::blue);
        std::unique_ptr<PageViewWindow> w;
        if (add) {
            w = std::make_unique<PageViewWindow>(h.context());
            w->setAttribute(Qt::WA_DeleteOnClose, false);
            QVERIFY(w->beginAdd(NodeKey::of(Level::Document, h.empty)));
            w->setAcquiredImage(image);
        } else {
            QVERIFY(image.save(h.session->paths().computedPagePath(h.singlePage), "JPG"));
            w = h.openViewer(h.singlePage);
            h.prompter.expect(kAutoAssign, Answer::Yes);
        }
        QCOMPARE(w->save(), PageSaver::Result::Saved);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        const qint32 id = w->location().pageId;
        QCOMPARE(h.fileBytes(h.session->paths().computedPagePath(id)),
                 ViewerHarness::jpegBytes(w->pageImage().image(), factor));
    }

    void saveKeepsTheFullImage()
    {
        ViewerHarness h;
        const QString page = h.session->paths().computedPagePath(h.singlePage);
        QVERIFY(ViewerHarness::writePicture(page, {2000, 1000}, Qt::black));
        auto w = h.openViewer(h.singlePage);
        for (int i = 0; i < 2; ++i) {
            h.prompter.expect(kAutoAssign, Answer::Yes);
            QCOMPARE(w->save(), PageSaver::Result::Saved);
            QCOMPARE(w->pageImage().image().size(), QSize(2000, 1000));
            QCOMPARE(w->canvas()->image().size(), QSize(2000, 1000));
            QCOMPARE(QImage(page).size(), QSize(2000, 1000));
        }
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(QImage(h.session->paths().computedThumbPath(h.singlePage)).size(), QSize(100, 50));
        QCOMPARE(h.row(h.singlePage).fileSize, QFileInfo(page).size());
        QVERIFY(h.row(h.singlePage).filename.isEmpty());
    }

    void readOnlyDirectory()
    {
        ViewerHarness h;
        const QString dir = h.outside.path();
        const QString first = h.outsideFile("first.jpg");
        const QByteArray bytes = h.fileBytes(first);
        const PageRow before = h.row(h.named);
        auto w = h.openViewer(h.named);
        w->cmdRotateClockwise();
        // The directory and the way to it, open to look at but closed to writing.
        for (QString d = dir; d != "/" && d != QDir::tempPath(); d = QFileInfo(d).path())
            QFile::setPermissions(d, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther |
                                         QFile::ExeOther | QFile::ReadGroup | QFile::ExeGroup);
        QFile::setPermissions(first, QFile::ReadOwner | QFile::ReadOther | QFile::ReadGroup);
        PageSaver::Result result = PageSaver::Result::Saved;
        QString told;
        {
            AsOrdinaryUser user;
            result = w->save();
            told = h.prompter.seen().value(0);
        }
        QFile::setPermissions(dir, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(result, PageSaver::Result::Failed);
        QVERIFY2(told.startsWith(QString("The image could not be written to '%1':").arg(first)),
                 qPrintable(told));
        QCOMPARE(h.prompter.seen().size(), 1);
        QCOMPARE(h.fileBytes(first), bytes);
        QCOMPARE(h.row(h.named).filename, before.filename);
        QCOMPARE(h.row(h.named).fileSize, before.fileSize);
        QCOMPARE(QDir(dir).entryList(QDir::Files | QDir::Hidden).size(), 1);
        // The edit is still there to be saved elsewhere or taken back.
        QVERIFY(w->pageImage().canUndo());
    }

    void addMakesItsRowsOnce_data()
    {
        // target: a key of the store's own for the others
        // number 0: refused with "Error!" and no row
        test::columns<QString, int>({"target", "number"});
        test::row("document with pages 4, 5, 5", "numbers", 6);
        test::row("empty document", "empty", 1);
        test::row("beside a page", "page", 6);
        test::row("folder", "folder", 1);
        test::row("root", "ROOT", 0);
        test::row("cabinet", "CAB1", 0);
        test::row("drawer", "DRW1", 0);
        test::row("a page that is gone", "PAG999", 0);
    }
    void addMakesItsRowsOnce()
    {
        auto [target, number] = fetch<QString, int>("target", "number");
        ViewerHarness h;
        const NodeKey key = target == "numbers"  ? NodeKey::of(Level::Document, h.numbers)
                            : target == "empty"  ? NodeKey::of(Level::Document, h.empty)
                            : target == "page"   ? NodeKey::of(Level::Page, h.twinB)
                            : target == "folder" ? NodeKey::of(Level::Folder, h.letters)
                                                 : NodeKey::parse(target);
        Database& db = h.session->db();
        const int pages = db.scalar("SELECT COUNT(*) FROM Page").toInt();
        const int documents = db.scalar("SELECT COUNT(*) FROM Document").toInt();
        PageViewWindow& w = h.newViewer();
        if (number == 0) {
            h.prompter.expect("Error!");
            QVERIFY(!w.beginAdd(key));
            QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
            QCOMPARE(db.scalar("SELECT COUNT(*) FROM Page").toInt(), pages);
            return;
        }
        QVERIFY(w.beginAdd(key));
        QCOMPARE(w.location().pageNumber, number);
        QCOMPARE(w.windowTitle(),
                 QString("Page # %1 (ID = %2)").arg(number).arg(w.location().pageId));
        const PageRow made = h.row(w.location().pageId);
        QCOMPARE(made.scanDate, QDate::currentDate());
        QCOMPARE(made.fileType, QString("JPG"));
        // What a run that is made to end keeps of a new page: its image, until it is saved.
        QVERIFY(w.unsavedPicture().isNull()); // nothing came yet
        w.setAcquiredImage(ViewerHarness::picture({300, 200}, Qt::blue));
        w.showAndLoad();
        QTRY_VERIFY(w.canvas()->isEnabled());
        QCOMPARE(w.canvas()->image().size(), QSize(300, 200)); // no file: the scan's image stays
        QCOMPARE(w.unsavedPicture().size(), QSize(300, 200));
        QVERIFY(w.preResolveDbId());
        QCOMPARE(w.save(), PageSaver::Result::Saved);
        QVERIFY(w.unsavedPicture().isNull());
        QVERIFY(w.preResolveDbId());
        QCOMPARE(db.scalar("SELECT COUNT(*) FROM Page").toInt(), pages + 1);
        QCOMPARE(db.scalar("SELECT COUNT(*) FROM Document").toInt(),
                 documents + (target == "folder" ? 1 : 0));
        QVERIFY(QFile::exists(h.session->paths().computedPagePath(made.id)));
        QVERIFY(h.row(made.id).filename.isEmpty());

        // The next sheet of the scan is the next page, in the same document.
        w.startNextPage();
        QVERIFY(w.preResolveDbId());
        QCOMPARE(db.scalar("SELECT COUNT(*) FROM Page").toInt(), pages + 2);
        QCOMPARE(w.location().documentId, made.documentId);
        QCOMPARE(w.location().pageNumber, number + 1);
        QCOMPARE(db.scalar("SELECT COUNT(*) FROM Document").toInt(),
                 documents + (target == "folder" ? 1 : 0));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        if (target == "folder")
            QCOMPARE(h.session->items().item(Level::Document, made.documentId).name,
                     QString("New document"));
    }

    // New pages: a document asked for before the scan, and the folder's notice by mail.
    void addingPages()
    {
        ViewerHarness h;
        h.home.settings().setMode(keys::GetDocInfo, DocInfoTime::BeforeScan);
        PageViewWindow& w = h.newViewer();
        QVERIFY(w.beginAdd(NodeKey::of(Level::Folder, h.letters)));
        const qint32 doc = w.location().documentId;
        QCOMPARE(h.nav.calls,
                 QStringList{QString("DOC%1 New document<%2").arg(doc).arg(h.letters)});
        w.setAcquiredImage(ViewerHarness::picture({30, 20}, Qt::blue));
        QCOMPARE(w.save(), PageSaver::Result::Saved);
        // A further scan goes into the document made for this one.
        QCOMPARE(w.key(), NodeKey::of(Level::Document, doc));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));

        test::SendmailStandIn sendmail;
        test::sendmailAt(sendmail.program, "scanner@example.org").write(h.home.settings());
        h.prompter.expect("Message sent.");
        PageViewWindow& v = h.newViewer();
        QVERIFY(v.beginAdd(NodeKey::of(Level::Document, h.namedDocument)));
        // Announced as the row is made, before any image exists.
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        const test::ParsedMessage m(sendmail.message());
        QCOMPARE(m.headers.value("to"), QByteArray("folder@example.org"));
        QVERIFY(test::ParsedMessage::unquote(m.body).contains("Document: Named\r\n\r\nNew page "
                                                              "scanned.  Page # 2"));
        // Later resolves make no new row, and so send no second notice.
        QVERIFY(v.preResolveDbId());
        v.setAcquiredImage(ViewerHarness::picture({30, 20}, Qt::blue));
        QVERIFY(v.preResolveDbId());
        QCOMPARE(h.prompter.seen().size(), 1);
    }

    // Leaving a new page offers to throw it away, with its row and any file at its path (an
    // earlier attempt); the document stays in any case. A saved page is no longer new: leaving
    // does not ask.
    void cancelOfANewPage_data()
    {
        // answer "": the page was saved first
        test::columns<QString, bool, bool>({"answer", "closed", "removed"});
        test::row("no", "N", false, false);
        test::row("cancel", "C", false, false);
        test::row("yes", "Y", true, true);
        test::row("after a save", QString(), true, false);
    }
    void cancelOfANewPage()
    {
        auto [answer, closed, removed] = fetch<QString, bool, bool>("answer", "closed", "removed");
        ViewerHarness h;
        PageViewWindow& w = h.newViewer();
        QVERIFY(w.beginAdd(NodeKey::of(Level::Document, h.empty)));
        const qint32 id = w.location().pageId;
        const QString file = h.session->paths().computedPagePath(id);
        QVERIFY(h.session->paths().ensurePathInHome(file));
        QVERIFY(ViewerHarness::writePicture(file, {20, 20}, Qt::red));
        w.show();
        if (answer.isEmpty()) {
            w.setAcquiredImage(ViewerHarness::picture({30, 20}, Qt::blue));
            QCOMPARE(w.save(), PageSaver::Result::Saved);
        } else {
            expect(h.prompter, {"Cancel saving this new page?=" + answer});
        }
        w.cmdCancel();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(w.isVisible(), !closed);
        QCOMPARE(h.session->pages().page(id).has_value(), !removed);
        QCOMPARE(QFile::exists(file), !removed);
        QVERIFY(h.session->items().item(Level::Document, h.empty).id >= 0);
    }

    void saveAs_data()
    {
        // chosen: %1 the outside directory, %2 the home; "" cancel
        test::columns<QString, QStringList, bool>({"chosen", "script", "written"});
        test::row("cancelled", QString(), QStringList(), false);
        test::row("new file", "%1/copies/copy.jpg", QStringList(), true);
        test::row("inside the home", "%2/Pages/copy.jpg",
                  QStringList{"You cannot save an image to a path within the Quillmere system.\n"
                              "Please select another location that is not within the application "
                              "path of:\n'%2'.=OK"},
                  false);
        test::row("existing, no", "%1/first.jpg",
                  QStringList{"'%1/first.jpg' exists.  Overwrite?=N"}, false);
        test::row("existing, cancel", "%1/first.jpg",
                  QStringList{"'%1/first.jpg' exists.  Overwrite?=C"}, false);
        test::row("existing, yes", "%1/first.jpg",
                  QStringList{"'%1/first.jpg' exists.  Overwrite?=Y"}, true);
        // A link planted at the chosen name: it is replaced, and the page's file it points at
        // stays as it was.
        test::row("a link, yes", "%1/link.jpg", QStringList{"'%1/link.jpg' exists.  Overwrite?=Y"},
                  true);
    }
    void saveAs()
    {
        auto [chosen, script, written] =
            fetch<QString, QStringList, bool>("chosen", "script", "written");
        ViewerHarness h;
        const QString dir = h.outside.path();
        h.home.settings().set(keys::LastSaveAsPath, dir + "/earlier/");
        const PageRow before = h.row(h.singlePage);
        auto w = h.openViewer(h.singlePage);
        w->cmdRotateClockwise();
        const QString path = fill(chosen, dir, h.home.path());
        const QByteArray first = h.fileBytes(h.outsideFile("first.jpg"));
        if (path.endsWith("link.jpg"))
            QVERIFY(QFile::link(h.outsideFile("first.jpg"), path));
        h.choosers.queueSaveFile(chosen.isEmpty() ? std::nullopt : std::optional<QString>(path));
        expect(h.prompter, script, dir, h.home.path());
        w->cmdSaveAs();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.choosers.saveStarts(),
                 QStringList{dir + "/earlier/" + QString::number(h.singlePage) + ".jpg"});
        if (path.endsWith("link.jpg")) {
            QVERIFY(!QFileInfo(path).isSymLink());
            QCOMPARE(h.fileBytes(h.outsideFile("first.jpg")), first);
        }
        if (written) {
            QCOMPARE(QImage(path).size(), QSize(1100, 850));
            QCOMPARE(h.home.settings().get(keys::LastSaveAsPath), QFileInfo(path).path() + "/");
        } else {
            QCOMPARE(h.home.settings().get(keys::LastSaveAsPath), dir + "/earlier/");
        }
        // A copy changes nothing of the page.
        QCOMPARE(h.row(h.singlePage).filename, before.filename);
        QCOMPARE(h.row(h.singlePage).fileSize, before.fileSize);
        QVERIFY(w->pageImage().canUndo());
    }
};

QMR_TEST(TestPageSave)
#include "testpagesave.moc"
