#include <QApplication>
#include <QEnterEvent>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "core/textfile.h"
#include "help/aboutdialog.h"
#include "help/helpcommands.h"
#include "help/helpfile.h"
#include "help/helplocator.h"
#include "help/helpwindow.h"
#include "tests/support/commandharness.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/testrunner.h"

using namespace qmr;

using qmr::test::whenModal;

namespace {

// A help file with comments, heads in upper case, a page of twelve lines, a title with "&",
// a topic whose second page is missing, and the two ignored page commands.
const QStringList kSample =
    QString("' a comment before everything\n[TOC]\n1=Getting started\n' a comment inside the "
            "table\n  2=Scan & file  \n4=Printing\nx=no number\n12=beyond the table\n3\n\n"
            "5=after the empty line\n[topic1,page1]\nFirst line\n' comment inside a page\n"
            "CenterIcon quill.ico\ncenterpicture tree.bmp\n  indented line\n\nLine & more\n"
            "[Topic2,Page1]\none\ntwo\nthree\nfour\nfive\nsix\nseven\neight\nnine\nten\n"
            "eleven\ntwelve\n  [topic2,page2]\nnot a head: it does not match the whole line\n"
            "[topic4,page1]\nPrint.\n[topic4,page2]")
        .split('\n');

const QStringList kHelp = QString("' test help\n[toc]\n1=Tree\n2=Q & A\n4=No pages\n\n"
                                  "[topic1,page1]\nTree page one\nsecond line\n[topic1,page2]\n"
                                  "Tree page two\n[topic2,page1]\nQuestions & answers")
                              .split('\n');

QString text(QWidget* w, const char* name)
{
    auto* label = w->findChild<QLabel*>(QLatin1String(name));
    return label ? label->text() : QStringLiteral("<missing>");
}

// Those of the window's controls that show.
QStringList shown(QWidget* w)
{
    QStringList names;
    for (const char* name :
         {"cmdTOC", "cmdPrev", "cmdNext", "lblPage", "lblLine0", "lblLine8", "cmdClose"})
        if (auto* child = w->findChild<QWidget*>(QLatin1String(name)); child && !child->isHidden())
            names << name;
    return names;
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

// Where the window is: "table, line N" (the marked line) or "topic T page P".
QString where(HelpWindow& w)
{
    return w.showsContents() ? QString("table, line %1").arg(w.markedLine())
                             : QString("topic %1 page %2").arg(w.topicNumber()).arg(w.pageNumber());
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
    void tableOfContents()
    {
        // Trimmed, the "&" a plain character; the table ended at the empty line.
        QCOMPARE(
            HelpFile::readToc(kSample).value_or(QStringList{"none"}),
            (QStringList{"Getting started", "Scan & file", "", "Printing", "", "", "", "", ""}));
        // It ends at a head too.
        QCOMPARE(HelpFile::readToc({"[toc]", "1=One", "[topic1,page1]", "2=Two"})->mid(0, 2),
                 (QStringList{"One", ""}));
        QVERIFY(!HelpFile::readToc({"' only a comment", "[topic1,page1]", "text"}));
        // A commented head is no head.
        QVERIFY(!HelpFile::readToc({"'[toc]", "1=One"}));
    }

    void pages_data()
    {
        test::columns<int, int, bool, QStringList>({"topic", "page", "found", "text"});
        test::row("comments and commands skipped", 1, 1, true,
                  QStringList{"First line", "  indented line", "", "Line & more"});
        test::row(
            "upper-case head, twelve lines show nine", 2, 1, true,
            QStringList{"one", "two", "three", "four", "five", "six", "seven", "eight", "nine"});
        test::row("a head must be the whole line", 2, 2, false, QStringList{});
        test::row("a page ends at the next head", 4, 1, true, QStringList{"Print."});
        test::row("an empty page is a page", 4, 2, true, QStringList{});
        test::row("page 0", 1, 0, false, QStringList{});
        test::row("missing topic", 7, 1, false, QStringList{});
    }
    void pages()
    {
        const auto [topic, page, found] = test::fetch<int, int, bool>("topic", "page", "found");
        const std::optional<QStringList> read = HelpFile::readPage(kSample, topic, page);
        QCOMPARE(bool(read), found);
        if (found)
            QTEST(*read, "text");
    }

    void pagesAndTheirLimits()
    {
        HelpFixture f;
        HelpWindow w(f.path());
        w.show();
        const auto onTable = [&] {
            QVERIFY(w.showsContents());
            QCOMPARE(w.topicNumber(), -1);
            QCOMPARE(text(&w, "lblTitle"), QString("Table of Contents"));
            QCOMPARE(QStringList({w.line(0)->text(), w.line(1)->text(), w.line(2)->text(),
                                  w.line(3)->text()}),
                     QStringList({"Tree", "Q & A", "", "No pages"}));
            QCOMPARE(shown(&w), QStringList({"lblLine0", "lblLine8", "cmdClose"}));
        };
        const auto page = [&](const char* button, int number, const char* shows) {
            if (button)
                click(&w, button);
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
        QCOMPARE(text(&w, "lblTitle"), QString("Tree"));
        page(nullptr, 1, "Tree page one\nsecond line");
        QCOMPARE(shown(&w).mid(0, 4), QStringList({"cmdTOC", "cmdPrev", "cmdNext", "lblPage"}));
        QVERIFY(!shown(&w).contains("lblLine0"));
        // Lines of the table do nothing while a page is shown.
        w.openTopic(1);
        QCOMPARE(w.topicNumber(), 1);
        // Previous on page 1 asks for page 0, finds none, and leaves page 1.
        page("cmdPrev", 1, "Tree page one\nsecond line");
        page("cmdNext", 2, "Tree page two");
        QCOMPARE(w.lastGoodPage(), 2);
        // Next on the last page leaves it on screen.
        page("cmdNext", 2, "Tree page two");
        page("cmdPrev", 1, "Tree page one\nsecond line");
        click(&w, "cmdTOC");
        onTable();
        // The "&" shows as itself.
        w.openTopic(1);
        QCOMPARE(text(&w, "lblTitle"), QString("Q & A"));
        QCOMPARE(text(&w, "lblPage"), QString("Questions & answers"));
        QVERIFY(ampersandTakesRoom(w.findChild<QLabel*>("lblTitle")));
        QVERIFY(ampersandTakesRoom(w.findChild<QLabel*>("lblPage")));
    }

    // A line is marked by the mouse over it, or by the arrow keys; the keys also open and turn.
    void markingAndKeys()
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

        HelpWindow keys(f.path());
        keys.show();
        // The empty line is passed over, down and up (from the end); "No pages" has none, so
        // Return on it leaves the table.
        const QList<std::pair<Qt::Key, const char*>> steps = {
            {Qt::Key_Down, "table, line 0"},   {Qt::Key_Down, "table, line 1"},
            {Qt::Key_Down, "table, line 3"},   {Qt::Key_1, "topic 1 page 1"},
            {Qt::Key_Right, "topic 1 page 2"}, {Qt::Key_Left, "topic 1 page 1"},
            {Qt::Key_Home, "table"},           {Qt::Key_Up, "table, line 3"},
            {Qt::Key_Return, "table, line 3"}, {Qt::Key_Up, "table, line 1"},
            {Qt::Key_Enter, "topic 2 page 1"}};
        for (const auto& [key, expected] : steps) {
            QTest::keyClick(&keys, key);
            QVERIFY2(where(keys).startsWith(expected), qPrintable(where(keys)));
        }
        QCOMPARE(keys.topicNumber(), 2);
        QTest::keyClick(&keys, Qt::Key_Escape);
        QVERIFY(!keys.isVisible());
    }

    // It sits over the main window, and reads the file again at every display.
    void placeAndFreshText()
    {
        HelpFixture f;
        QWidget main;
        main.setGeometry(100, 80, 900, 700);
        HelpWindow w(f.path(), &main);
        // At the main window's place, ending 800 twips (53 pixels) short of its edges.
        QCOMPARE(w.geometry().topLeft(), main.geometry().topLeft());
        QCOMPARE(w.size(), QSize(847, 647));
        QStringList changed = kHelp;
        changed.replaceInStrings("1=Tree", "1=The filing tree");
        QVERIFY(TextFile::writeLines(f.path(), changed));
        w.openTopic(0);
        QCOMPARE(w.topicTitle(), QString("Tree"));
        w.cmdTOC();
        QCOMPARE(w.line(0)->text(), QString("The filing tree"));
    }

    void locatorOrder()
    {
        QTemporaryDir exe, data, home;
        const HelpLocator locator(exe.path(), {data.path()}, home.path());
        QCOMPARE(locator.locate(), QString());
        // Each one found goes before those after it: the program's, the system's, the home's.
        for (const QTemporaryDir* dir : {&home, &data, &exe}) {
            TextFile::writeLines(dir->filePath("qmrhelp.txt"), {"[toc]"});
            QCOMPARE(locator.locate(), dir->filePath("qmrhelp.txt"));
        }
        // A directory of that name is no help file.
        QTemporaryDir other;
        QDir(other.path()).mkdir("qmrhelp.txt");
        QCOMPARE(HelpLocator(other.path(), {}, QString()).locate(), QString());
    }

    // The help text shipped in the program covers every topic, fits the window, and lands in a
    // home without one, but never over the user's own.
    void shippedText()
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

        test::TestHome home;
        QVERIFY(HelpLocator::ensureInHome(home.home()));
        QFile written(home.file("qmrhelp.txt"));
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(written.readAll(), HelpLocator::shippedText());
        written.close();
        QVERIFY(TextFile::writeLines(home.file("qmrhelp.txt"), {"[toc]", "1=Mine"}));
        QVERIFY(HelpLocator::ensureInHome(home.home()));
        QCOMPARE(HelpFile::readToc(*TextFile::readLines(home.file("qmrhelp.txt")))->first(),
                 QString("Mine"));
    }

    void pageCountFormat_data()
    {
        test::columns<qint64, QString, QString>({"count", "locale", "shown"});
        test::row("no digit is required", qint64(0), QString("C"), QString());
        for (const char* shown : {"7", "999", "1,000", "1,234,567", "123,456,789,012"})
            test::row(shown, QString(shown).remove(',').toLongLong(), QString("C"), QString(shown));
        test::row("German groups", qint64(1234567), QString("de_DE"), QString("1.234.567"));
    }
    void pageCountFormat()
    {
        QFETCH(qint64, count);
        QFETCH(QString, locale);
        QTEST(AboutDialog::formatPageCount(count, QLocale(locale)), "shown");
    }

    void commands()
    {
        test::CommandHarness<> h;
        test::FixtureStore store(h.home.home());
        const qint32 doc =
            store.document(store.folder(store.drawer(store.cabinet("C"), "D"), "F"), "Doc");
        for (int i = 1; i <= 3; ++i)
            store.pageRow(doc, i);
        h.openSession();
        QTemporaryDir exe, data;
        HelpCommands commands(h.context(), HelpLocator(exe.path(), {data.path()}, h.home.path()));
        CommandTable table;
        commands.addTo(table);

        h.prompter.expect("Cannot find help file QMRHELP.TXT.");
        table.value("mnuHelpHelpTopics")();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));

        TextFile::writeLines(data.filePath("qmrhelp.txt"), kHelp);
        QString seen;
        whenModal(this, [&](QWidget* w) {
            seen = w->objectName() + " " + text(w, "lblLine1");
            w->close();
        });
        table.value("mnuHelpHelpTopics")();
        QCOMPARE(seen, QString("frmHelp Q & A"));

        whenModal(this, [&](QWidget* w) {
            seen = w->windowTitle() + "|" + text(w, "lblApp") + "|" + text(w, "lblPgCnt");
            click(w, "cmdOK");
        });
        table.value("mnuHelpAbout")();
        QCOMPARE(seen, "About Quillmere|Quillmere " + AboutDialog::version() + "|Pages stored: 3");
        QVERIFY(
            QRegularExpression("^\\d+\\.\\d+\\.\\d+$").match(AboutDialog::version()).hasMatch());
    }
};

QMR_TEST(TestHelpWindow)
#include "testhelpwindow.moc"
