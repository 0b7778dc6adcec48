#include <QTest>

#include "help/helpfile.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;

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

} // namespace

class TestHelpFile : public QObject
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
};

QMR_TEST(TestHelpFile)
#include "testhelpfile.moc"
