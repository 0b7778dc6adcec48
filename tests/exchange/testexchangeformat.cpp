#include <QTest>

#include "exchange/exchangereader.h"
#include "exchange/exchangewriter.h"
#include "exchange/filetypefilter.h"
#include "exchangefixture.h"
#include "store/itemrules.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::row;

// The names, manifests and encodings of the exchange directory, writer against reader.
class TestExchangeFormat : public QObject
{
    Q_OBJECT
private slots:
    void names_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("clean");
        QTest::addColumn<QString>("documentDir");
        row("plain", "Taxes 2025", "Taxes 2025", "Taxes 2025");
        row("periods go", "Bank.Accounts", "BankAccounts", "Bank");
        row("document extension", "Bill.2.pdf", "Bill2pdf", "Bill2");
        row("a.b.c", "a.b.c", "abc", "ab");
        row("ab.c", "ab.c", "abc", "ab");
        row("every bad character", "a\\b/c:d*e?f\"g<h>i|j.k", "abcdefghijk", "abcdefghij");
        row("only an extension", ".pdf", "pdf", "");
        row("only bad characters", "...", "", "");
        row("others stay", "Müller & Söhne (#1) 'x'", "Müller & Söhne (#1) 'x'",
            "Müller & Söhne (#1) 'x'");
    }
    void names()
    {
        QFETCH(QString, name);
        QFETCH(QString, clean);
        QFETCH(QString, documentDir);
        QCOMPARE(ExchangeWriter::cleanFileName(name), clean);
        QCOMPARE(ExchangeWriter::documentDirectoryName(name), documentDir);
    }

    void descriptions_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("encoded");
        QTest::addColumn<QString>("back");
        row("none", "", "", "");
        row("CR LF", "one\r\ntwo", "one|two", "one\r\ntwo");
        row("LF as typed here", "one\ntwo\nthree", "one|two|three", "one\r\ntwo\r\nthree");
        row("CR alone", "one\rtwo", "one|two", "one\r\ntwo");
        row("a typed bar comes back a line break", "cost | value", "cost | value",
            "cost \r\n value");
        row("blank lines", "a\r\n\r\nb", "a||b", "a\r\n\r\nb");
    }
    void descriptions()
    {
        QFETCH(QString, stored);
        QFETCH(QString, encoded);
        QFETCH(QString, back);
        QCOMPARE(ExchangeWriter::encodeDescription(stored), encoded);
        QCOMPARE(ExchangeReader::decodeDescription(encoded), back);
        // The manifest holds it on one line and reads it back.
        const QStringList lines = ExchangeWriter::descriptionLines(stored);
        QCOMPARE(lines.size(), 2);
        QCOMPARE(ExchangeReader::parseDescription(lines), back);
    }

    void pageFileNames_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("file");
        QTest::newRow("computed") << "/h/Pages/0000000/7.jpg" << 3 << "Page 3.jpg";
        QTest::newRow("upper case") << "/scans/IMG_1.JPG" << 12 << "Page 12.jpg";
        QTest::newRow("jpeg keeps its name") << "/scans/photo.jpeg" << 2 << "photo.jpeg";
        QTest::newRow("tiff") << "/scans/june.tif" << 1 << "june.tif";
        QTest::newRow("shortcut") << "/docs/notes.pdf" << 4 << "notes.pdf";
    }
    void pageFileNames()
    {
        QFETCH(QString, stored);
        QFETCH(int, number);
        QFETCH(QString, file);
        QCOMPARE(ExchangeWriter::pageFileName(stored, number), file);
    }

    void pageNumbers_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("number"); // -1: none
        QTest::newRow("page") << "Page 12.jpg" << 12;
        QTest::newRow("any case") << "PAGE 5.JPG" << 5;
        QTest::newRow("no number") << "Page x.jpg" << 0;
        QTest::newRow("no blank") << "Page5.jpg" << -1;
        QTest::newRow("other") << "scan 3.jpg" << -1;
    }
    void pageNumbers()
    {
        QFETCH(QString, file);
        QFETCH(int, number);
        const std::optional<qint32> found = ExchangeReader::pageNumberOf(file);
        QCOMPARE(found ? *found : -1, number);
    }

    void documentManifest()
    {
        ItemManifest doc;
        doc.dateOnDocument = QDate(2026, 3, 31);
        doc.description = "Paid\nin full";
        doc.amount = 1234.5;
        const QStringList lines = ExchangeWriter::documentLines(doc);
        QCOMPARE(lines, QStringList({"[DateOnDocument]", "03/31/2026", "", "[Description]",
                                     "Paid|in full", "", "[Amount]", "1234.5"}));
        const DocumentValues values = ExchangeReader::parseDocument(lines);
        QCOMPARE(values.date, "03/31/2026");
        QCOMPARE(values.description, "Paid\r\nin full");
        QCOMPARE(values.amount, "1234.5");

        ItemManifest empty;
        QCOMPARE(
            ExchangeWriter::documentLines(empty),
            QStringList({"[DateOnDocument]", "", "", "[Description]", "", "", "[Amount]", ""}));
    }

    void amountsReadBackAsWritten_data()
    {
        QTest::addColumn<double>("amount");
        QTest::addColumn<QString>("text");
        QTest::newRow("cents") << 1234.5 << "1234.5";
        QTest::newRow("negative") << -12.25 << "-12.25";
        QTest::newRow("whole") << 99.0 << "99";
        // Forms a shorter writing would give with an exponent, which the reader stops at.
        QTest::newRow("a hundred-thousandth") << 0.00001 << "0.00001";
        QTest::newRow("very large") << 1e20 << "100000000000000000000";
        QTest::newRow("a sum that is not its digits") << 0.1 + 0.2 << "0.30000000000000004";
    }
    void amountsReadBackAsWritten()
    {
        QFETCH(double, amount);
        QFETCH(QString, text);
        QCOMPARE(ExchangeWriter::amountText(amount), text);
        QCOMPARE(ItemRules::leadingNumber(ExchangeWriter::amountText(amount)), amount);
    }

    void readerIsForgiving_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("amount");
        row("any order, any case, blanks trimmed",
            QStringList{"  [AMOUNT] ", " 12.50 ", "", "[description]", "  Hello  ", "",
                        "[DateOnDocument]", "1/2/2025"},
            "1/2/2025", "Hello", "12.50");
        row("an empty line ends a key",
            QStringList{"[Description]", "", "not a value", "[Amount]", "3"}, "", "", "3");
        row("unknown lines are passed over",
            QStringList{"garbage", "[Colour]", "red", "[Amount]", "7", "trailing"}, "", "", "7");
        row("a key as the last line", QStringList{"[Amount]"}, "", "", "");
    }
    void readerIsForgiving()
    {
        QFETCH(QStringList, lines);
        QFETCH(QString, date);
        QFETCH(QString, description);
        QFETCH(QString, amount);
        const DocumentValues values = ExchangeReader::parseDocument(lines);
        QCOMPARE(values.date, date);
        QCOMPARE(values.description, description);
        QCOMPARE(values.amount, amount);
    }

    void descriptionFile_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("description");
        QTest::newRow("as written") << QStringList{"[Description]", "a|b"} << "a\r\nb";
        QTest::newRow("upper case key, blank lines between")
            << QStringList{"[DESCRIPTION]", "", "   ", "  text  "} << "text";
        QTest::newRow("no key") << QStringList{"text"} << "";
        QTest::newRow("empty file") << QStringList{} << "";
    }
    void descriptionFile()
    {
        QFETCH(QStringList, lines);
        QFETCH(QString, description);
        QCOMPARE(ExchangeReader::parseDescription(lines), description);
    }

    void exchangeFileNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("exchange");
        QTest::addColumn<bool>("loose");
        QTest::newRow("marker") << "QMR.txt" << true << false;
        QTest::newRow("marker upper") << "QMR.TXT" << true << false;
        QTest::newRow("cabinet") << "cabinet.txt" << true << false;
        QTest::newRow("drawer") << "Drawer.TXT" << true << false;
        QTest::newRow("folder") << "Folder.txt" << true << false;
        QTest::newRow("document is loose above documents") << "Document.txt" << true << true;
        QTest::newRow("a page") << "Page 1.jpg" << false << true;
        QTest::newRow("a text file") << "notes.txt" << false << true;
    }
    void exchangeFileNames()
    {
        QFETCH(QString, name);
        QFETCH(bool, exchange);
        QFETCH(bool, loose);
        QCOMPARE(ExchangeReader::isExchangeFile(name), exchange);
        QCOMPARE(ExchangeReader::isLooseFile(name), loose);
    }

    void fileTypes()
    {
        const QStringList files{"a.jpg", "b.JPG", "README", "c.tar.gz", "d.pdf", "e.jpg"};
        // In the order found, each once, upper-cased; a name without "." is its own type.
        QCOMPARE(FileTypeFilter::typesIn(files), QStringList({"JPG", "README", "GZ", "PDF"}));
        QCOMPARE(FileTypeFilter().text(), QString());
        QCOMPARE(FileTypeFilter::of({"JPG", "PDF"}).text(), "jpg,pdf,");
        QCOMPARE(FileTypeFilter::of({}).text(), "zzzzz,");
    }

    void fileTypeFilter_data()
    {
        QTest::addColumn<QStringList>("chosen");
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("taken");
        QTest::newRow("all: anything") << QStringList{"*"} << "x.zzz" << true;
        QTest::newRow("chosen type") << QStringList{"JPG"} << "x.jpg" << true;
        QTest::newRow("case does not matter") << QStringList{"jpg"} << "X.JPG" << true;
        QTest::newRow("other type") << QStringList{"JPG"} << "x.pdf" << false;
        QTest::newRow("pg is found in jpg,") << QStringList{"JPG"} << "x.pg" << true;
        QTest::newRow("g is found in jpg,") << QStringList{"JPG"} << "x.g" << true;
        QTest::newRow("jpgx is not") << QStringList{"JPG"} << "x.jpgx" << false;
        QTest::newRow("no extension is always taken") << QStringList{"PDF"} << "README" << true;
        QTest::newRow("nothing chosen takes nothing") << QStringList{} << "x.jpg" << false;
        QTest::newRow("nothing chosen, no extension") << QStringList{} << "README" << false;
    }
    void fileTypeFilter()
    {
        QFETCH(QStringList, chosen);
        QFETCH(QString, file);
        QFETCH(bool, taken);
        const FileTypeFilter filter =
            chosen == QStringList{"*"} ? FileTypeFilter() : FileTypeFilter::of(chosen);
        QCOMPARE(filter.accepts(file), taken);
    }
};

QMR_TEST(TestExchangeFormat)
#include "testexchangeformat.moc"
