#include <QLocale>
#include <QTest>

#include "core/localenumber.h"
#include "tests/support/testrunner.h"

using namespace qmr;

class TestLocaleNumber : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void read_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isNumber");
        QTest::addColumn<double>("value");
        QTest::newRow("us groups") << "en_US"
                                   << "1,234.00" << true << 1234.0;
        QTest::newRow("us plain") << "en_US"
                                  << "1234.5" << true << 1234.5;
        QTest::newRow("us blanks around") << "en_US"
                                          << "  42 " << true << 42.0;
        QTest::newRow("us negative") << "en_US"
                                     << "-5.25" << true << -5.25;
        QTest::newRow("us million") << "en_US"
                                    << "1,234,567.89" << true << 1234567.89;
        QTest::newRow("us trailing text") << "en_US"
                                          << "12abc" << false << 0.0;
        QTest::newRow("us empty") << "en_US"
                                  << "" << false << 0.0;
        QTest::newRow("us blank") << "en_US"
                                  << "   " << false << 0.0;
        QTest::newRow("us word") << "en_US"
                                 << "ten" << false << 0.0;
        QTest::newRow("us two points") << "en_US"
                                       << "1.2.3" << false << 0.0;
        QTest::newRow("de groups") << "de_DE"
                                   << "1.234,50" << true << 1234.5;
        QTest::newRow("de decimal comma") << "de_DE"
                                          << "12,5" << true << 12.5;
        QTest::newRow("de reads its own group first") << "de_DE"
                                                      << "1.234" << true << 1234.0;
        QTest::newRow("de accepts the plain form") << "de_DE"
                                                   << "1234.5" << true << 1234.5;
        QTest::newRow("de accepts the C form with groups") << "de_DE"
                                                           << "1,234.00" << true << 1234.0;
        QTest::newRow("de word") << "de_DE"
                                 << "zwölf" << false << 0.0;
    }
    void read()
    {
        QFETCH(QString, locale);
        QFETCH(QString, text);
        QFETCH(bool, isNumber);
        QFETCH(double, value);
        QLocale::setDefault(QLocale(locale));
        const std::optional<double> number = LocaleNumber::read(text);
        QCOMPARE(number.has_value(), isNumber);
        if (isNumber)
            QCOMPARE(*number, value);
    }
};

QMR_TEST(TestLocaleNumber)
#include "testlocalenumber.moc"
