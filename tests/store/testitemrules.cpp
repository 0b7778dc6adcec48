#include <QTest>

#include "store/itemrules.h"
#include "tests/support/testrunner.h"

using namespace qmr;

class TestItemRules : public QObject
{
    Q_OBJECT
private slots:
    void characterSets_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("badName");
        QTest::addColumn<bool>("badPath");
        QTest::newRow("plain") << "Bank statements 2025" << false << false;
        QTest::newRow("apostrophe") << "O'Brien" << false << false;
        QTest::newRow("dot") << "letter.jpg" << true << false;
        QTest::newRow("backslash") << "a\\b" << true << true;
        QTest::newRow("colon") << "a:b" << true << false;
        QTest::newRow("slash") << "a/b" << true << false;
        QTest::newRow("star") << "a*" << true << true;
        QTest::newRow("question") << "why?" << true << true;
        QTest::newRow("quote") << "say \"hi\"" << true << true;
        QTest::newRow("less") << "<a" << true << true;
        QTest::newRow("greater") << "a>" << true << true;
        QTest::newRow("pipe") << "a|b" << true << true;
        QTest::newRow("empty") << "" << false << false;
    }
    void characterSets()
    {
        QFETCH(QString, text);
        QFETCH(bool, badName);
        QFETCH(bool, badPath);
        QCOMPARE(ItemRules::containsBadCharacters(text), badName);
        QCOMPARE(ItemRules::containsBadPathCharacters(text), badPath);
        QCOMPARE(ItemRules::containsBadCharacters(ItemRules::stripBadCharacters(text)), false);
        QCOMPARE(ItemRules::containsBadPathCharacters(ItemRules::stripBadPathCharacters(text)),
                 false);
    }

    void strip()
    {
        QCOMPARE(ItemRules::stripBadCharacters("a/b:c d"), QStringLiteral("abc d"));
        QCOMPARE(ItemRules::stripBadPathCharacters("/x:\\y.z"), QStringLiteral("/x:y.z"));
        QCOMPARE(ItemRules::badCharactersMessage(),
                 QStringLiteral("The following characters are not allowed:\n"
                                "\\ / : * ? \" < > | ."));
    }

    void dates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("blank");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QDate>("date");
        QTest::newRow("three blanks") << "   " << true << true << QDate();
        QTest::newRow("empty") << "" << true << true << QDate();
        QTest::newRow("mm/dd/yyyy") << "03/14/2026" << false << true << QDate(2026, 3, 14);
        QTest::newRow("m/d/yyyy") << "3/4/2026" << false << true << QDate(2026, 3, 4);
        QTest::newRow("m/d/yy") << "3/4/26" << false << true << QDate(2026, 3, 4);
        QTest::newRow("old yy") << "3/4/75" << false << true << QDate(1975, 3, 4);
        QTest::newRow("iso") << "2026-03-14" << false << true << QDate(2026, 3, 14);
        QTest::newRow("padded") << " 12/31/2099 " << false << true << QDate(2099, 12, 31);
        QTest::newRow("february 30") << "2/30/2026" << false << false << QDate();
        QTest::newRow("words") << "soon" << false << false << QDate();
        QTest::newRow("month 13") << "13/01/2026" << false << false << QDate();
    }
    void dates()
    {
        QFETCH(QString, text);
        QFETCH(bool, blank);
        QFETCH(bool, valid);
        QFETCH(QDate, date);
        QCOMPARE(ItemRules::isBlank(text), blank);
        QCOMPARE(ItemRules::isValidDate(text), valid);
        QCOMPARE(ItemRules::dateOrZero(text), date);
        if (date.isValid())
            QCOMPARE(ItemRules::parseDate(ItemRules::displayDate(date)), date);
    }

    void displayDate()
    {
        QCOMPARE(ItemRules::displayDate(QDate(2026, 3, 4)), QStringLiteral("03/04/2026"));
        QCOMPARE(ItemRules::displayDate(QDate()), QString());
    }

    void leadingNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("number");
        QTest::newRow("plain") << "12" << 12.0;
        QTest::newRow("letters behind") << "12abc" << 12.0;
        QTest::newRow("letters only") << "abc" << 0.0;
        QTest::newRow("comma stops") << "1,234.00" << 1.0;
        QTest::newRow("decimals") << "19.99 EUR" << 19.99;
        QTest::newRow("second point stops") << "1.2.3" << 1.2;
        QTest::newRow("negative") << "-5.5x" << -5.5;
        QTest::newRow("blanks") << "  42 " << 42.0;
        QTest::newRow("point only") << "." << 0.0;
        QTest::newRow("sign only") << "-" << 0.0;
        QTest::newRow("empty") << "" << 0.0;
    }
    void leadingNumber()
    {
        QFETCH(QString, text);
        QFETCH(double, number);
        QCOMPARE(ItemRules::leadingNumber(text), number);
    }

    void pictureFiles_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("picture");
        QTest::newRow("jpg") << "scan.jpg" << true;
        QTest::newRow("JPEG") << "SCAN.JPEG" << true;
        QTest::newRow("bmp") << "/a/b/c.Bmp" << true;
        QTest::newRow("no dot") << "scanjpg" << true;
        QTest::newRow("no dot, bmp") << "scanbmp" << true;
        QTest::newRow("png") << "scan.png" << false;
        QTest::newRow("pdf") << "scan.pdf" << false;
        QTest::newRow("jpg directory") << "/a.jpg/readme.txt" << false;
        QTest::newRow("empty") << "" << false;
    }
    void pictureFiles()
    {
        QFETCH(QString, name);
        QFETCH(bool, picture);
        QCOMPARE(ItemRules::isPictureFile(name), picture);
    }
};

QMR_TEST(TestItemRules)
#include "testitemrules.moc"
