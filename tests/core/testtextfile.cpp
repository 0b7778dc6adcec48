#include <QTemporaryDir>
#include <QTest>

#include "core/textfile.h"
#include "tests/support/testrunner.h"

using namespace qmr;

class TestTextFile : public QObject
{
    Q_OBJECT
private slots:
    void decode_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("utf-8 accent") << QByteArray("Caf\xc3\xa9") << QString::fromUtf8("Café");
        QTest::newRow("old code page accent") << QByteArray("Caf\xe9") << QString::fromUtf8("Café");
        QTest::newRow("old code page quotes and euro")
            << QByteArray("\x93Tax\x94 \x80 5") << QString::fromUtf8("“Tax” € 5");
        QTest::newRow("byte-order mark dropped") << QByteArray("\xef\xbb\xbf"
                                                               "DRW=Bank")
                                                 << QStringLiteral("DRW=Bank");
        QTest::newRow("utf-8 emoji")
            << QByteArray("\xf0\x9f\x93\x81 Files") << QString::fromUtf8("📁 Files");
        QTest::newRow("truncated utf-8 falls back")
            << QByteArray("Na\xc3") << QString::fromUtf8("NaÃ");
        QTest::newRow("empty") << QByteArray() << QString();
    }
    void decode()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QCOMPARE(TextFile::decode(bytes), text);
    }

    void splitLines_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("crlf") << "a\r\nb\r\n" << QStringList{"a", "b"};
        QTest::newRow("lf, no last end") << "a\nb" << QStringList{"a", "b"};
        QTest::newRow("lone cr") << "a\rb" << QStringList{"a", "b"};
        QTest::newRow("empty lines kept") << "a\n\n\nb\n" << QStringList{"a", "", "", "b"};
        QTest::newRow("nothing") << "" << QStringList{};
        // A text that is a view of a longer one ends where its size says, not at a line end
        // that follows in memory.
        static constexpr char16_t kLonger[] = u"a\n\n";
        QTest::newRow("view ends before a line end")
            << QString::fromRawData(reinterpret_cast<const QChar*>(kLonger), 2) << QStringList{"a"};
    }
    void splitLines()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, lines);
        QCOMPARE(TextFile::splitLines(text), lines);
    }

    void writtenAsUtf8AndReadBack()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("Drawer.txt");
        const QStringList lines{"DRW=Impôts", "FLD=Reçus", ""};
        QVERIFY(TextFile::writeLines(path, lines, "\r\n"));
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), QByteArray("DRW=Imp\xc3\xb4ts\r\nFLD=Re\xc3\xa7us\r\n\r\n"));
        QCOMPARE(TextFile::readLines(path).value(), lines);
        QVERIFY(!TextFile::readLines(dir.filePath("missing.txt")));
        QVERIFY(!TextFile::writeLines(dir.filePath("no/such/dir/x.txt"), lines));
    }
};

QMR_TEST(TestTextFile)
#include "testtextfile.moc"
