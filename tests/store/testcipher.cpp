#include <QTest>

#include "store/cipher.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::row;

class TestCipher : public QObject
{
    Q_OBJECT
private slots:
    void examplesAndEdges()
    {
        const QString stored = encryptText(QStringLiteral("AB"), Cipher::key());
        QCOMPARE(stored.size(), 2);
        QCOMPARE(int(stored.at(0).unicode()), 76);
        QCOMPARE(int(stored.at(1).unicode()), 54);
        QCOMPARE(encryptText(QString(), Cipher::key()), QString());
        QCOMPARE(decryptText(QString(), Cipher::key()), QString());
        // Eleven equal characters: the eleventh meets the first key character again.
        const QString eleven = encryptText(QString(11, QLatin1Char('m')), Cipher::key());
        QCOMPARE(eleven.at(10), eleven.at(0));
        QVERIFY(eleven.at(9) != eleven.at(0));
        // An empty key falls back on the second key.
        QCOMPARE(encryptText("secret", QString()), encryptText("secret", Cipher::fallbackKey()));
        QCOMPARE(decryptText(encryptText("secret", QString()), QString()),
                 QStringLiteral("secret"));
    }

    void roundTripEveryPrintableCharacter_data()
    {
        QTest::addColumn<int>("length");
        for (int n = 1; n <= 10; ++n)
            row(qPrintable(QString::number(n)), n);
    }
    void roundTripEveryPrintableCharacter()
    {
        QFETCH(int, length);
        // Every printable Latin-1 character at every key position, including those whose
        // shift passes 255 and wraps.
        QString printable;
        for (int c = 32; c <= 255; ++c)
            if (c < 127 || c > 160)
                printable += QChar(c);
        for (int start = 0; start < printable.size(); ++start) {
            QString clear;
            for (int i = 0; i < length; ++i)
                clear += printable.at((start + i * 7) % printable.size());
            const QString stored = encryptText(clear, Cipher::key());
            QCOMPARE(stored.size(), clear.size());
            for (const QChar c : stored)
                QVERIFY(c.unicode() <= 255);
            QCOMPARE(decryptText(stored, Cipher::key()), clear);
        }
    }
};

QMR_TEST(TestCipher)
#include "testcipher.moc"
