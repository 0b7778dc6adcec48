#include <QTest>

#include "help/helpfile.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// A help file with comments, heads in upper case, a page of twelve lines, a title with "&",
// a topic whose second page is missing, and the two ignored page commands.
QStringList sample()
{
    return {
        "' a comment before everything",
        "[TOC]",
        "1=Getting started",
        "' a comment inside the table",
        "  2=Scan & file  ",
        "4=Printing",
        "x=no number",
        "12=beyond the table",
        "3",
        "",
        "5=after the empty line",
        "[topic1,page1]",
        "First line",
        "' comment inside a page",
        "CenterIcon quill.ico",
        "centerpicture tree.bmp",
        "  indented line",
        "",
        "Line & more",
        "[Topic2,Page1]",
        "one",
        "two",
        "three",
        "four",
        "five",
        "six",
        "seven",
        "eight",
        "nine",
        "ten",
        "eleven",
        "twelve",
        "  [topic2,page2]",
        "not a head: it does not match the whole line",
        "[topic4,page1]",
        "Print.",
        "[topic4,page2]",
    };
}

} // namespace

class TestHelpFile : public QObject
{
    Q_OBJECT
private slots:
    void tableOfContents()
    {
        // Trimmed, the "&" a plain character; the table ended at the empty line.
        QCOMPARE(
            HelpFile::readToc(sample()).value_or(QStringList{"none"}),
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
        QTest::addColumn<int>("topic");
        QTest::addColumn<int>("page");
        QTest::addColumn<bool>("found");
        QTest::addColumn<QStringList>("text");
        QTest::newRow("comments and commands skipped")
            << 1 << 1 << true << QStringList{"First line", "  indented line", "", "Line & more"};
        QTest::newRow("upper-case head, twelve lines show nine")
            << 2 << 1 << true
            << QStringList{"one", "two", "three", "four", "five", "six", "seven", "eight", "nine"};
        QTest::newRow("a head must be the whole line") << 2 << 2 << false << QStringList{};
        QTest::newRow("a page ends at the next head") << 4 << 1 << true << QStringList{"Print."};
        QTest::newRow("an empty page is a page") << 4 << 2 << true << QStringList{};
        QTest::newRow("page 0") << 1 << 0 << false << QStringList{};
        QTest::newRow("missing topic") << 7 << 1 << false << QStringList{};
    }
    void pages()
    {
        QFETCH(int, topic);
        QFETCH(int, page);
        QFETCH(bool, found);
        QFETCH(QStringList, text);
        const std::optional<QStringList> read = HelpFile::readPage(sample(), topic, page);
        QCOMPARE(bool(read), found);
        if (found)
            QCOMPARE(*read, text);
    }
};

QMR_TEST(TestHelpFile)
#include "testhelpfile.moc"
