#include <QApplication>
#include <QEnterEvent>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>

#include "core/progress.h"
#include "core/runstate.h"
#include "core/textfile.h"
#include "core/viewsettings.h"
#include "help/aboutdialog.h"
#include "help/helpcommands.h"
#include "help/helpfile.h"
#include "help/helplocator.h"
#include "help/helpwindow.h"
#include "store/schema.h"
#include "store/session.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

using qmr::test::whenModal;

namespace {

const QStringList kHelp = {
    "' test help",
    "[toc]",
    "1=Tree",
    "2=Q & A",
    "4=No pages",
    "",
    "[topic1,page1]",
    "Tree page one",
    "second line",
    "[topic1,page2]",
    "Tree page two",
    "[topic2,page1]",
    "Questions & answers",
};

QString text(QWidget* w, const char* name)
{
    auto* label = w->findChild<QLabel*>(QLatin1String(name));
    return label ? label->text() : QStringLiteral("<missing>");
}

bool shown(QWidget* w, const char* name)
{
    auto* child = w->findChild<QWidget*>(QLatin1String(name));
    return child && !child->isHidden();
}

// Whether a label draws its "&" as a character: with a mnemonic it would take no room.
bool ampersandTakesRoom(QLabel* label)
{
    QLabel without(label->text().remove('&'));
    without.setFont(label->font());
    return label->buddy() == nullptr && label->textFormat() == Qt::PlainText &&
           label->sizeHint().width() > without.sizeHint().width();
}

void click(QWidget* w, const char* button)
{
    w->findChild<QPushButton*>(button)->click();
}

void enter(QWidget* w)
{
    QEnterEvent event(QPointF(2, 2), QPointF(2, 2), w->mapToGlobal(QPointF(2, 2)));
    QApplication::sendEvent(w, &event);
}

struct HelpFixture
{
    QTemporaryDir dir;
    QString path() const { return dir.filePath("qmrhelp.txt"); }
    HelpFixture() { TextFile::writeLines(path(), kHelp); }
};

} // namespace

class TestHelpWindow : public QObject
{
    Q_OBJECT
private slots:
    void pagesAndTheirLimits()
    {
        HelpFixture f;
        HelpWindow w(f.path());
        w.show();
        const auto onTable = [&] {
            QVERIFY(w.showsContents());
            QCOMPARE(w.topicNumber(), -1);
            QCOMPARE(text(&w, "lblTitle"), QString("Table of Contents"));
            QCOMPARE(w.line(0)->text(), QString("Tree"));
            QCOMPARE(w.line(1)->text(), QString("Q & A"));
            QCOMPARE(w.line(2)->text(), QString());
            QCOMPARE(w.line(3)->text(), QString("No pages"));
            for (const char* name : {"cmdTOC", "cmdPrev", "cmdNext", "lblPage"})
                QVERIFY2(!shown(&w, name), name);
            QVERIFY(shown(&w, "lblLine8"));
            QVERIFY(shown(&w, "cmdClose"));
        };
        const auto page = [&](int number, const char* shows) {
            QCOMPARE(w.pageNumber(), number);
            QCOMPARE(text(&w, "lblPage"), QString(shows));
        };
        onTable();
        QVERIFY(ampersandTakesRoom(w.line(1)));
        // Lines without a page leave the table: an empty one, and "No pages".
        w.openTopic(2);
        w.openTopic(3);
        onTable();
        QTest::mouseClick(w.line(0), Qt::LeftButton);
        QCOMPARE(w.topicNumber(), 1);
        QCOMPARE(w.topicTitle(), QString("Tree"));
        QCOMPARE(text(&w, "lblTitle"), QString("Tree"));
        page(1, "Tree page one\nsecond line");
        for (const char* name : {"cmdTOC", "cmdPrev", "cmdNext", "lblPage"})
            QVERIFY2(shown(&w, name), name);
        QVERIFY(!shown(&w, "lblLine0"));
        // Lines of the table do nothing while a page is shown.
        w.openTopic(1);
        QCOMPARE(w.topicNumber(), 1);
        // Previous on page 1 asks for page 0, finds none, and leaves page 1.
        click(&w, "cmdPrev");
        page(1, "Tree page one\nsecond line");
        click(&w, "cmdNext");
        page(2, "Tree page two");
        QCOMPARE(w.lastGoodPage(), 2);
        // Next on the last page leaves it on screen.
        click(&w, "cmdNext");
        page(2, "Tree page two");
        click(&w, "cmdPrev");
        page(1, "Tree page one\nsecond line");
        click(&w, "cmdTOC");
        onTable();
        // The "&" shows as itself.
        w.openTopic(1);
        QCOMPARE(text(&w, "lblTitle"), QString("Q & A"));
        QCOMPARE(text(&w, "lblPage"), QString("Questions & answers"));
        QVERIFY(ampersandTakesRoom(w.findChild<QLabel*>("lblTitle")));
        QVERIFY(ampersandTakesRoom(w.findChild<QLabel*>("lblPage")));
    }

    void linesUnderTheMouseAreMarked()
    {
        HelpFixture f;
        HelpWindow w(f.path());
        w.show();
        QCOMPARE(w.markedLine(), -1);
        enter(w.line(0));
        QCOMPARE(w.markedLine(), 0);
        QVERIFY(w.line(0)->font().underline());
        enter(w.line(3));
        QCOMPARE(w.markedLine(), 3);
        QVERIFY(w.line(3)->font().underline());
        QVERIFY(!w.line(0)->font().underline());
        // The marked line stands on a ground of its own.
        const QPoint corner = w.line(3)->mapTo(&w, QPoint(1, 1));
        const QRgb marked = w.grab().toImage().pixel(corner);
        enter(w.line(0));
        QVERIFY(w.grab().toImage().pixel(corner) != marked);
    }

    void keyboard()
    {
        HelpFixture f;
        HelpWindow w(f.path());
        w.show();
        QTest::keyClick(&w, Qt::Key_Down);
        QCOMPARE(w.markedLine(), 0);
        QTest::keyClick(&w, Qt::Key_Down);
        QCOMPARE(w.markedLine(), 1);
        QTest::keyClick(&w, Qt::Key_Down); // the empty line is passed over
        QCOMPARE(w.markedLine(), 3);
        QTest::keyClick(&w, Qt::Key_1);
        QCOMPARE(w.topicNumber(), 1);
        QTest::keyClick(&w, Qt::Key_Right);
        QCOMPARE(w.pageNumber(), 2);
        QTest::keyClick(&w, Qt::Key_Left);
        QCOMPARE(w.pageNumber(), 1);
        QTest::keyClick(&w, Qt::Key_Home);
        QVERIFY(w.showsContents());
        QTest::keyClick(&w, Qt::Key_Up); // from the end, past the empty lines
        QCOMPARE(w.markedLine(), 3);
        QTest::keyClick(&w, Qt::Key_Return); // "No pages" has none: the table stays
        QCOMPARE(w.topicNumber(), -1);
        QVERIFY(w.showsContents());
        QTest::keyClick(&w, Qt::Key_Up);
        QTest::keyClick(&w, Qt::Key_Enter);
        QCOMPARE(w.topicNumber(), 2);
        QTest::keyClick(&w, Qt::Key_Escape);
        QVERIFY(!w.isVisible());
    }

    void fileIsReadAtEveryDisplay()
    {
        HelpFixture f;
        HelpWindow w(f.path());
        QStringList changed = kHelp;
        changed.replaceInStrings("1=Tree", "1=The filing tree");
        QVERIFY(TextFile::writeLines(f.path(), changed));
        w.openTopic(0);
        QCOMPARE(w.topicTitle(), QString("Tree"));
        w.cmdTOC();
        QCOMPARE(w.line(0)->text(), QString("The filing tree"));
    }

    void sitsOverTheMainWindow()
    {
        HelpFixture f;
        QWidget main;
        main.setGeometry(100, 80, 900, 700);
        HelpWindow w(f.path(), &main);
        // At the main window's place, ending 800 twips (53 pixels) short of its edges.
        QCOMPARE(w.geometry().topLeft(), main.geometry().topLeft());
        QCOMPARE(w.size(), QSize(847, 647));
    }

    void locatorOrder()
    {
        QTemporaryDir exe, data, home;
        const HelpLocator locator(exe.path(), {data.path()}, home.path());
        QCOMPARE(locator.candidates(),
                 (QStringList{exe.filePath("qmrhelp.txt"), data.filePath("qmrhelp.txt"),
                              home.filePath("qmrhelp.txt")}));
        QCOMPARE(locator.locate(), QString());
        // Each one found goes before those after it.
        for (const QTemporaryDir* dir : {&home, &data, &exe}) {
            TextFile::writeLines(dir->filePath("qmrhelp.txt"), {"[toc]"});
            QCOMPARE(locator.locate(), dir->filePath("qmrhelp.txt"));
        }
        // A directory of that name is no help file.
        QTemporaryDir other;
        QDir(other.path()).mkdir("qmrhelp.txt");
        QCOMPARE(HelpLocator(other.path(), {}, QString()).locate(), QString());
    }

    void homeGetsTheShippedText()
    {
        test::TestHome home;
        QVERIFY(HelpLocator::ensureInHome(home.home()));
        QFile written(home.file("qmrhelp.txt"));
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(written.readAll(), HelpLocator::shippedText());
        written.close();
        // A help text of the user's own is left alone.
        QVERIFY(TextFile::writeLines(home.file("qmrhelp.txt"), {"[toc]", "1=Mine"}));
        QVERIFY(HelpLocator::ensureInHome(home.home()));
        QCOMPARE(HelpFile::readToc(*TextFile::readLines(home.file("qmrhelp.txt")))->first(),
                 QString("Mine"));
    }

    void shippedTextIsComplete()
    {
        const QStringList lines =
            TextFile::splitLines(TextFile::decode(HelpLocator::shippedText()));
        const std::optional<QStringList> toc = HelpFile::readToc(lines);
        QVERIFY(toc);
        for (int topic = 1; topic <= 9; ++topic) {
            QVERIFY2(!toc->at(topic - 1).isEmpty(), qPrintable(QString::number(topic)));
            QVERIFY2(HelpFile::readPage(lines, topic, 1), qPrintable(toc->at(topic - 1)));
        }
        // No page says more than the nine lines a page shows.
        const QRegularExpression head("^\\[topic(\\d+),page(\\d+)\\]$");
        int pages = 0;
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (!head.match(lines.at(i)).hasMatch())
                continue;
            ++pages;
            int count = 0;
            for (qsizetype j = i + 1; j < lines.size() && !lines.at(j).trimmed().startsWith('[');
                 ++j)
                if (!lines.at(j).startsWith('\''))
                    ++count;
            QVERIFY2(count <= HelpFile::kLines, qPrintable(lines.at(i)));
        }
        QVERIFY(pages >= 9);
        const QString all = toc->join(' ').toLower();
        for (const char* subject :
             {"tree", "pages", "scanning", "find", "export", "printing", "mail"})
            QVERIFY2(all.contains(subject), subject);
    }

    void pageCountFormat_data()
    {
        QTest::addColumn<qint64>("count");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("shown");
        QTest::newRow("no digit is required") << qint64(0) << "C" << QString();
        for (const auto& [count, shown] : {std::pair<qint64, const char*>{7, "7"},
                                           {999, "999"},
                                           {1000, "1,000"},
                                           {1234567, "1,234,567"},
                                           {123456789012, "123,456,789,012"}})
            QTest::newRow(shown) << count << "C" << QString(shown);
        QTest::newRow("German groups") << qint64(1234567) << "de_DE" << QString("1.234.567");
    }
    void pageCountFormat()
    {
        QFETCH(qint64, count);
        QFETCH(QString, locale);
        QTEST(AboutDialog::formatPageCount(count, QLocale(locale)), "shown");
    }

    void commands()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        const qint32 cab = store.cabinet("C");
        const qint32 doc = store.document(store.folder(store.drawer(cab, "D"), "F"), "Doc");
        for (int i = 1; i <= 3; ++i)
            store.pageRow(doc, i);
        Session session(home.home(), home.settings());
        RunState state;
        StoreSchema::openDatabase(session.db(), home.home());
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        SilentProgress progress;
        ViewSettings view(home.settings());
        const CommandContext context{session, state, prompter, choosers, progress, view};
        HelpCommands commands(context);
        CommandTable table;
        commands.addTo(table);
        QVERIFY(table.contains("mnuHelpHelpTopics"));
        QVERIFY(table.contains("mnuHelpAbout"));

        QTemporaryDir exe, data;
        commands.setLocator(HelpLocator(exe.path(), {data.path()}, home.path()));
        prompter.expect("Cannot find help file QMRHELP.TXT.");
        table.value("mnuHelpHelpTopics")();
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));

        TextFile::writeLines(data.filePath("qmrhelp.txt"), kHelp);
        QString seen;
        whenModal(this, [&](QWidget* w) {
            seen = w->objectName() + " " + w->findChild<QLabel*>("lblLine1")->text();
            w->close();
        });
        table.value("mnuHelpHelpTopics")();
        QCOMPARE(seen, QString("frmHelp Q & A"));

        whenModal(this, [&](QWidget* w) {
            seen = w->windowTitle() + "|" + text(w, "lblApp") + "|" + text(w, "lblPgCnt");
            w->findChild<QPushButton*>("cmdOK")->click();
        });
        table.value("mnuHelpAbout")();
        QCOMPARE(seen, "About Quillmere|Quillmere " + AboutDialog::version() + "|Pages stored: 3");
        QVERIFY(
            QRegularExpression("^\\d+\\.\\d+\\.\\d+$").match(AboutDialog::version()).hasMatch());
    }
};

QMR_TEST(TestHelpWindow)
#include "testhelpwindow.moc"
