#include <QTest>

#include "core/localenumber.h"
#include "tests/support/testrunner.h"

using namespace qmr;

class TestLocaleNumber : public QObject
{
    Q_OBJECT
private slots:
    void read_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isNumber");
        QTest::addColumn<double>("value");
        QTest::newRow("grouped") << "en_US"
                                 << "1,234.50" << true << 1234.5;
        QTest::newRow("plain") << "en_US"
                               << "1234.5" << true << 1234.5;
        QTest::newRow("blanks around") << "en_US"
                                       << "  12 " << true << 12.0;
        QTest::newRow("negative") << "en_US"
                                  << "-7.25" << true << -7.25;
        QTest::newRow("millions") << "en_US"
                                  << "1,234,567.89" << true << 1234567.89;
        QTest::newRow("dollar sign") << "en_US"
                                     << "$1,234.50" << true << 1234.5;
        QTest::newRow("iso code") << "en_US"
                                  << "1,234.50 USD" << true << 1234.5;
        QTest::newRow("letters behind") << "en_US"
                                        << "12abc" << false << 0.0;
        QTest::newRow("letters only") << "en_US"
                                      << "none" << false << 0.0;
        QTest::newRow("blank") << "en_US"
                               << "   " << false << 0.0;
        QTest::newRow("two points") << "en_US"
                                    << "1.2.3" << false << 0.0;
        QTest::newRow("infinity") << "en_US"
                                  << "inf" << false << 0.0;
        QTest::newRow("space where a comma groups") << "en_US"
                                                    << "1 234.50" << false << 0.0;
        QTest::newRow("german grouped") << "de_DE"
                                        << "1.234,50" << true << 1234.5;
        QTest::newRow("german comma") << "de_DE"
                                      << "12,5" << true << 12.5;
        QTest::newRow("german euro") << "de_DE"
                                     << "12,50 €" << true << 12.5;
        QTest::newRow("french typed space") << "fr_FR"
                                            << "1 234,50" << true << 1234.5;
        QTest::newRow("other currency") << "en_US"
                                        << "12 EUR" << false << 0.0;
    }
    void read()
    {
        QFETCH(QString, locale);
        QFETCH(QString, text);
        QFETCH(bool, isNumber);
        QFETCH(double, value);
        const std::optional<double> read = LocaleNumber(QLocale(locale)).read(text);
        QCOMPARE(read.has_value(), isNumber);
        if (isNumber)
            QCOMPARE(*read, value);
    }

    void writeReadsBack_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("written");
        QTest::newRow("en_US") << "en_US"
                               << "1,234,567.89";
        QTest::newRow("de_DE") << "de_DE"
                               << "1.234.567,89";
    }
    void writeReadsBack()
    {
        QFETCH(QString, locale);
        QFETCH(QString, written);
        const LocaleNumber numbers{QLocale(locale)};
        QCOMPARE(numbers.write(1234567.891, 2), written);
        QCOMPARE(*numbers.read(written), 1234567.89);
    }

    void messageNamesTheField()
    {
        QCOMPARE(LocaleNumber(QLocale("en_US")).notANumberMessage("Amount"),
                 QStringLiteral("Amount must be a number, such as 1,234.50."));
        QCOMPARE(LocaleNumber(QLocale("de_DE")).notANumberMessage("Amount"),
                 QStringLiteral("Amount must be a number, such as 1.234,50."));
    }
};

QMR_TEST(TestLocaleNumber)
#include "testlocalenumber.moc"
