#include <QTest>

#include "store/itemrules.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::columns;
using qmr::test::row;

class TestItemRules : public QObject
{
    Q_OBJECT
private slots:
    void characterSets_data()
    {
        columns<QString, bool, bool>({"text", "badName", "badPath"});
        row("plain", "Bank statements 2025", false, false);
        row("apostrophe", "O'Brien", false, false);
        row("empty", "", false, false);
        // Each character no name may hold; of them a path may hold "/", ":" and ".".
        for (const QChar c : QStringLiteral("\\/:*?\"<>|."))
            QTest::addRow("a%cb", c.toLatin1())
                << QString("a%1b").arg(c) << true << !QStringLiteral("/:.").contains(c);
    }
    void characterSets()
    {
        const auto [text, badName, badPath] =
            test::fetch<QString, bool, bool>("text", "badName", "badPath");
        QCOMPARE(ItemRules::containsBadCharacters(text), badName);
        QCOMPARE(ItemRules::containsBadPathCharacters(text), badPath);
        QCOMPARE(ItemRules::containsBadCharacters(ItemRules::stripBadCharacters(text)), false);
        QCOMPARE(ItemRules::containsBadPathCharacters(ItemRules::stripBadPathCharacters(text)),
                 false);
    }

    void stripAndDisplay()
    {
        QCOMPARE(ItemRules::stripBadCharacters("a/b:c d"), QStringLiteral("abc d"));
        QCOMPARE(ItemRules::stripBadPathCharacters("/x:\\y.z"), QStringLiteral("/x:y.z"));
        QCOMPARE(ItemRules::badCharactersMessage(),
                 QStringLiteral("The following characters are not allowed:\n"
                                "\\ / : * ? \" < > | ."));
        QCOMPARE(ItemRules::displayDate(QDate(2026, 3, 4)), QStringLiteral("03/04/2026"));
        QCOMPARE(ItemRules::displayDate(QDate()), QString());
    }

    void dates_data()
    {
        columns<QString, bool, bool, QDate>({"text", "blank", "valid", "date"});
        row("three blanks", "   ", true, true, QDate());
        row("mm/dd/yyyy", "03/14/2026", false, true, QDate(2026, 3, 14));
        row("m/d/yyyy", "3/4/2026", false, true, QDate(2026, 3, 4));
        row("m/d/yy", "3/4/26", false, true, QDate(2026, 3, 4));
        row("old yy", "3/4/75", false, true, QDate(1975, 3, 4));
        row("iso", "2026-03-14", false, true, QDate(2026, 3, 14));
        row("padded", " 12/31/2099 ", false, true, QDate(2099, 12, 31));
        row("february 30", "2/30/2026", false, false, QDate());
        row("words", "soon", false, false, QDate());
        row("month 13", "13/01/2026", false, false, QDate());
    }
    void dates()
    {
        const auto [text, blank, valid, date] =
            test::fetch<QString, bool, bool, QDate>("text", "blank", "valid", "date");
        QCOMPARE(ItemRules::isBlank(text), blank);
        QCOMPARE(ItemRules::isValidDate(text), valid);
        QCOMPARE(ItemRules::dateOrZero(text), date);
        if (date.isValid())
            QCOMPARE(ItemRules::parseDate(ItemRules::displayDate(date)), date);
    }

    void leadingNumber_data()
    {
        columns<QString, double>({"text", "number"});
        row("plain", "12", 12.0);
        row("letters behind", "12abc", 12.0);
        row("letters only", "abc", 0.0);
        row("comma stops", "1,234.00", 1.0);
        row("decimals", "19.99 EUR", 19.99);
        row("second point stops", "1.2.3", 1.2);
        row("negative", "-5.5x", -5.5);
        row("blanks", "  42 ", 42.0);
        row("point only", ".", 0.0);
        row("sign only", "-", 0.0);
        row("empty", "", 0.0);
    }
    void leadingNumber()
    {
        const auto [text, number] = test::fetch<QString, double>("text", "number");
        QCOMPARE(ItemRules::leadingNumber(text), number);
    }

    void pictureFiles_data()
    {
        columns<QString, bool>({"name", "picture"});
        row("jpg", "scan.jpg", true);
        row("JPEG", "SCAN.JPEG", true);
        row("bmp", "/a/b/c.Bmp", true);
        row("no dot", "scanjpg", true);
        row("no dot, bmp", "scanbmp", true);
        row("png", "scan.png", false);
        row("jpg directory", "/a.jpg/readme.txt", false);
        row("empty", "", false);
    }
    void pictureFiles()
    {
        const auto [name, picture] = test::fetch<QString, bool>("name", "picture");
        QCOMPARE(ItemRules::isPictureFile(name), picture);
    }
};

QMR_TEST(TestItemRules)
#include "testitemrules.moc"
