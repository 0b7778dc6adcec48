#include <QTest>

#include "core/localenumber.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using qmr::test::row;
using namespace qmr;
using qmr::test::columns;

class TestLocaleNumber : public QObject
{
    Q_OBJECT
private slots:
    void read_data()
    {
        columns<QString, QString, bool, double>({"locale", "text", "isNumber", "value"});
        row("grouped", "en_US", "1,234.50", true, 1234.5);
        row("plain", "en_US", "1234.5", true, 1234.5);
        row("blanks around", "en_US", "  12 ", true, 12.0);
        row("negative", "en_US", "-7.25", true, -7.25);
        row("millions", "en_US", "1,234,567.89", true, 1234567.89);
        row("dollar sign", "en_US", "$1,234.50", true, 1234.5);
        row("iso code", "en_US", "1,234.50 USD", true, 1234.5);
        row("letters behind", "en_US", "12abc", false, 0.0);
        row("letters only", "en_US", "none", false, 0.0);
        row("blank", "en_US", "   ", false, 0.0);
        row("two points", "en_US", "1.2.3", false, 0.0);
        row("infinity", "en_US", "inf", false, 0.0);
        row("space where a comma groups", "en_US", "1 234.50", false, 0.0);
        row("german grouped", "de_DE", "1.234,50", true, 1234.5);
        row("german comma", "de_DE", "12,5", true, 12.5);
        row("german euro", "de_DE", "12,50 €", true, 12.5);
        row("french typed space", "fr_FR", "1 234,50", true, 1234.5);
        row("other currency", "en_US", "12 EUR", false, 0.0);
    }
    void read()
    {
        auto [locale, text, isNumber, value] =
            test::fetch<QString, QString, bool, double>("locale", "text", "isNumber", "value");
        const std::optional<double> read = LocaleNumber(QLocale(locale)).read(text);
        QCOMPARE(read.has_value(), isNumber);
        if (isNumber)
            QCOMPARE(*read, value);
    }

    // Written as the locale writes it, read back, and named in the message about a bad value.
    void writeReadsBack_data()
    {
        columns<QString, QString, QString>({"locale", "written", "message"});
        row("en_US", "en_US", "1,234,567.89", "Amount must be a number, such as 1,234.50.");
        row("de_DE", "de_DE", "1.234.567,89", "Amount must be a number, such as 1.234,50.");
    }
    void writeReadsBack()
    {
        auto [locale, written, message] =
            test::fetch<QString, QString, QString>("locale", "written", "message");
        const LocaleNumber numbers{QLocale(locale)};
        QCOMPARE(numbers.write(1234567.891, 2), written);
        QCOMPARE(*numbers.read(written), 1234567.89);
        QCOMPARE(numbers.notANumberMessage("Amount"), message);
    }
};

QMR_TEST(TestLocaleNumber)
#include "testlocalenumber.moc"
