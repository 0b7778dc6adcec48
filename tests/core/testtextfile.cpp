#include <QTemporaryDir>
#include <QTest>

#include "core/textfile.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::columns;
using qmr::test::row;

class TestTextFile : public QObject
{
    Q_OBJECT
private slots:
    void decode_data()
    {
        columns<QByteArray, QString>({"bytes", "text"});
        row("utf-8 accent", QByteArray("Caf\xc3\xa9"), QString::fromUtf8("Café"));
        row("old code page accent", QByteArray("Caf\xe9"), QString::fromUtf8("Café"));
        row("old code page quotes and euro", QByteArray("\x93Tax\x94 \x80 5"),
            QString::fromUtf8("“Tax” € 5"));
        row("byte-order mark dropped",
            QByteArray("\xef\xbb\xbf"
                       "DRW=Bank"),
            QStringLiteral("DRW=Bank"));
        row("utf-8 emoji", QByteArray("\xf0\x9f\x93\x81 Files"), QString::fromUtf8("📁 Files"));
        row("truncated utf-8 falls back", QByteArray("Na\xc3"), QString::fromUtf8("NaÃ"));
        row("empty", QByteArray(), QString());
    }
    void decode()
    {
        auto [bytes, text] = test::fetch<QByteArray, QString>("bytes", "text");
        QCOMPARE(TextFile::decode(bytes), text);
    }

    void splitLines_data()
    {
        columns<QString, QStringList>({"text", "lines"});
        row("crlf", "a\r\nb\r\n", QStringList{"a", "b"});
        row("lf, no last end", "a\nb", QStringList{"a", "b"});
        row("lone cr", "a\rb", QStringList{"a", "b"});
        row("empty lines kept", "a\n\n\nb\n", QStringList{"a", "", "", "b"});
        row("nothing", "", QStringList{});
        // A text that is a view of a longer one ends where its size says, not at a line end
        // that follows in memory.
        static constexpr char16_t kLonger[] = u"a\n\n";
        row("view ends before a line end",
            QString::fromRawData(reinterpret_cast<const QChar*>(kLonger), 2), QStringList{"a"});
    }
    void splitLines()
    {
        auto [text, lines] = test::fetch<QString, QStringList>("text", "lines");
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
