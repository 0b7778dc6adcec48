#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>

#include "store/pagepaths.h"
#include "tests/app/apprun.h"
#include "tests/text/printedpage.h"
#include "text/textreading.h"
#include "text/textworker.h"
#include "viewer/matchmarks.h"
#include "viewer/pagecanvas.h"
#include "viewer/pageviewwindow.h"

using namespace qmr;

// The worker that reads the pages is this executable in the program's worker mode.
QMR_TEST_PROGRAM_MODE(TextWorker, TextWorker::kOption, &TextWorker::run)

namespace {

constexpr int kReadMs = 180000;

// The assembled program with its text reading worker, on a home with one document whose pages
// are printed with the given lines, a page each.
struct ReadingRun : test::AppRun
{
    qint32 doc = -1;
    QList<qint32> filed;
    QStringList path; // the keys from the cabinet down to the document

    bool start(const QString& languages, const QList<QStringList>& printed)
    {
        {
            test::FixtureStore store(home.home());
            const qint32 cabinet = store.cabinet("Home"), drawer = store.drawer(cabinet, "Bills"),
                         folder = store.folder(drawer, "Gas");
            doc = store.document(folder, "Winter");
            path = QStringList{NodeKey::of(Level::Cabinet, cabinet).text(),
                               NodeKey::of(Level::Drawer, drawer).text(),
                               NodeKey::of(Level::Folder, folder).text(),
                               NodeKey::of(Level::Document, doc).text()};
            for (const QStringList& lines : printed) {
                filed << store.pageRow(doc, int(filed.size()) + 1);
                const QString file = PagePaths(home.home()).computedPagePath(filed.last());
                if (!QDir().mkpath(QFileInfo(file).path()) ||
                    !test::printedPage(lines).save(file, "JPG"))
                    return false;
            }
        }
        home.settings().set(keys::OcrLanguages, languages);
        startup = std::make_unique<Startup>(
            home.home(), home.settings(), prompter, choosers,
            QStringList{QCoreApplication::applicationFilePath(), TextWorker::kOption});
        return startup->start();
    }

    // The viewer that Return in the page pane opens on the page, once it shows the picture.
    PageViewWindow* openPage(qint32 page)
    {
        PageViewWindow* viewer = nullptr;
        if (!pages()->selectPage(page))
            return nullptr;
        QTest::keyClick(pageView(), Qt::Key_Return);
        const auto shown = [&] {
            viewer = window()->findChild<PageViewWindow*>();
            return viewer && viewer->isVisible() && viewer->location().pageId == page &&
                   viewer->canvas()->hasImage();
        };
        return QTest::qWaitFor(shown, 60000) ? viewer : nullptr;
    }
};

} // namespace

// Words printed on filed pages, read by the assembled program, found through Find, marked in
// the page pane and boxed in the viewer, whose match buttons go through the document.
class TestPageText : public QObject
{
    Q_OBJECT
private slots:
    void foundMarkedAndBoxed()
    {
        ReadingRun run;
        QVERIFY(run.start("eng", {{"Garden tools receipt"},
                                  {"Northwind heating invoice", "Pay Northwind soon"},
                                  {"Water meter reading"},
                                  {"Northwind final notice"}}));
        TextReading* reading = run.startup->textReading();
        QVERIFY(reading);
        QVERIFY(QTest::qWaitFor([&] { return reading->index().pages() == run.filed; }, kReadMs));

        test::whenModal(this, [](QWidget* find) {
            find->findChild<QLineEdit*>("txtPageWords")->setText("northwind");
            find->findChild<QPushButton*>("cmdFind")->click();
        });
        run.window()->menus().run("mnuFileFind");
        const QString found = NodeKey::found(Level::Document, run.doc).text();
        QTRY_VERIFY(run.tree()->node(found));
        QVERIFY(run.tree()->selectNode(found));
        QTest::keyClick(run.tree(), Qt::Key_Return);

        // The pane marks the pages that hold the word, and only those.
        QTRY_COMPARE(run.pages()->count(), 4);
        QList<qint32> marked;
        for (int row = 0; row < run.pages()->count(); ++row)
            if (run.pages()->matchedAt(row))
                marked << run.pages()->pageIdAt(row);
        QCOMPARE(marked, (QList<qint32>{run.filed.at(1), run.filed.at(3)}));

        // Opened as a person opens it: the word is boxed where it is printed, twice.
        PageViewWindow* viewer = run.openPage(run.filed.at(1));
        QVERIFY(viewer);
        const QList<QRect> boxes = viewer->canvas()->marks();
        QCOMPARE(boxes.size(), 2);
        // "Northwind" begins the first line at (150, 150) and ends the second's words.
        QVERIFY2(
            qAbs(boxes.at(0).left() - 150) < 15 && qAbs(boxes.at(0).bottom() - 150) < 20,
            qPrintable(QString::asprintf("first box %d,%d %dx%d", boxes.at(0).x(), boxes.at(0).y(),
                                         boxes.at(0).width(), boxes.at(0).height())));
        QVERIFY(boxes.at(0).width() > 150 && boxes.at(0).width() < 300);
        QVERIFY(boxes.at(1).top() > boxes.at(0).bottom());
        QCOMPARE(viewer->canvas()->currentMark(), 0);
        auto* label = viewer->findChild<QLabel*>("lblMatch");
        auto* next = viewer->findChild<QPushButton*>("cmdNextMatch");
        auto* prev = viewer->findChild<QPushButton*>("cmdPrevMatch");
        QVERIFY(label->isVisible() && next->isEnabled() && !prev->isEnabled());
        QCOMPARE(label->text(), QString("Match 1 of 2"));

        // F3 goes to the next place, then on to the next page that holds the word; back
        // from there ends on the last place of the page before.
        viewer->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(viewer));
        // A button's key clicks it as a mouse would, a moment later.
        QTest::keyClick(viewer, Qt::Key_F3);
        QTRY_COMPARE(viewer->canvas()->currentMark(), 1);
        QTest::keyClick(viewer, Qt::Key_F3);
        QTRY_COMPARE(viewer->location().pageId, run.filed.at(3));
        QCOMPARE(viewer->canvas()->marks().size(), 1);
        QCOMPARE(viewer->canvas()->currentMark(), 0);
        QVERIFY(!next->isEnabled() && prev->isEnabled());
        QTest::keyClick(viewer, Qt::Key_F3, Qt::ShiftModifier);
        QTRY_COMPARE(viewer->location().pageId, run.filed.at(1));
        QCOMPARE(viewer->canvas()->currentMark(), 1);

        // The viewer's Searchable PDF writes the whole document with its words under the
        // pictures: each PDF page gives back its page's text.
        QTemporaryDir out;
        const QString pdf = out.filePath("Winter.pdf");
        run.choosers.queueSaveFile(pdf);
        viewer->findChild<QPushButton*>("cmdSearchablePdf")->click();
        QProcess text;
        text.start("pdftotext", {"-f", "2", "-l", "2", pdf, "-"});
        QVERIFY(text.waitForFinished(60000));
        QCOMPARE(QString::fromUtf8(text.readAllStandardOutput()).simplified(),
                 QString("Northwind heating invoice Pay Northwind soon"));

        // A turned picture no longer fits its boxes; turned back, it does again.
        viewer->cmdRotateClockwise();
        QVERIFY(viewer->canvas()->marks().isEmpty());
        QVERIFY(!next->isEnabled());
        viewer->mnuEditUndo();
        QCOMPARE(viewer->canvas()->marks().size(), 2);

        // A picture saved from the viewer (as a scan's page is saved after its row is made)
        // is read again: a look over the pages follows the save.
        viewer->cmdRotateClockwise();
        run.prompter.expect("No filename entered.  Do you want to auto-assign a filename?",
                            Prompter::Answer::Yes); // the page has no name of its own yet
        QCOMPARE(viewer->save(), PageSaver::Result::Saved);
        const QString saved = viewer->currentFile();
        QVERIFY(QFileInfo::exists(saved));
        QVERIFY(QTest::qWaitFor(
            [&] {
                const std::optional<TextIndex::Entry> entry =
                    reading->index().entry(run.filed.at(1));
                return entry && entry->stamp == TextIndex::Stamp::of(saved);
            },
            kReadMs));

        // A page of the same document opened from the filing tree shows no marks.
        const QPointer<PageViewWindow> closed = viewer;
        viewer->close();
        QTRY_VERIFY(!closed);
        run.click(run.path);
        QTRY_COMPARE(run.pages()->count(), 4);
        QVERIFY(!run.pages()->matchedAt(1));
        QVERIFY(viewer = run.openPage(run.filed.at(1)));
        QVERIFY(viewer->canvas()->marks().isEmpty());
        QVERIFY(!viewer->findChild<QPushButton*>("cmdNextMatch")->isVisible());
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }

    // Languages whose pack is missing: the foot of the window says so, the settings dialog
    // says it again, and choosing a pack that is there has the running program read the pages.
    void aMissingPackAndAnotherChoice()
    {
        ReadingRun run;
        QVERIFY(run.start("xqz", {{"Vehicle excise notice"}}));
        auto* line = run.window()->findChild<QLabel*>("lblReadingText");
        QVERIFY(line);
        QTRY_VERIFY_WITH_TIMEOUT(line->text().contains("xqz"), kReadMs);

        QString said;
        test::whenModal(this, [&](QWidget* dialog) {
            said = dialog->findChild<QLabel*>("lblMissing")->text();
            auto* list = dialog->findChild<QListWidget*>("lstLanguages");
            const QList<QListWidgetItem*> english =
                list->findItems("English (eng)", Qt::MatchExactly);
            if (english.size() == 1)
                english.first()->setCheckState(Qt::Checked);
            dialog->findChild<QPushButton*>("cmdOK")->click();
        });
        run.window()->menus().run("mnuTextSettings");
        QVERIFY2(said.startsWith("The language pack for xqz is not installed"), qPrintable(said));
        QCOMPARE(run.home.settings().get(keys::OcrLanguages), QString("eng"));
        TextReading* reading = run.startup->textReading();
        QVERIFY(QTest::qWaitFor([&] { return reading->index().pages() == run.filed; }, kReadMs));
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }
};

QMR_TEST(TestPageText)
#include "testpagetext.moc"
