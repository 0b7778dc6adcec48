#include "exchange/exchangereader.h"
#include "exchange/exchangewriter.h"
#include "exchange/filetypefilter.h"
#include "exchangefixture.h"
#include "store/itemrules.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::fetch;
using test::row;

// The names, manifests and encodings of the exchange directory, writer against reader.
class TestExchangeFormat : public QObject
{
    Q_OBJECT
private slots:
    void names_data()
    {
        test::columns<QString, QString, QString>({"name", "clean", "documentDir"});
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
        auto [name, clean, documentDir] =
            fetch<QString, QString, QString>("name", "clean", "documentDir");
        QCOMPARE(ExchangeWriter::cleanFileName(name), clean);
        QCOMPARE(ExchangeWriter::documentDirectoryName(name), documentDir);
    }

    void descriptions_data()
    {
        test::columns<QString, QString, QString>({"stored", "encoded", "back"});
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
        auto [stored, encoded, back] =
            fetch<QString, QString, QString>("stored", "encoded", "back");
        QCOMPARE(ExchangeWriter::encodeDescription(stored), encoded);
        QCOMPARE(ExchangeReader::decodeDescription(encoded), back);
        // The manifest holds it on one line and reads it back.
        const QStringList lines = ExchangeWriter::descriptionLines(stored);
        QCOMPARE(lines.size(), 2);
        QCOMPARE(ExchangeReader::parseDescription(lines), back);
    }

    void pageFileNames_data()
    {
        test::columns<QString, int, QString>({"stored", "number", "file"});
        row("computed", "/h/Pages/0000000/7.jpg", 3, "Page 3.jpg");
        row("upper case", "/scans/IMG_1.JPG", 12, "Page 12.jpg");
        row("jpeg keeps its name", "/scans/photo.jpeg", 2, "photo.jpeg");
        row("tiff", "/scans/june.tif", 1, "june.tif");
        row("shortcut", "/docs/notes.pdf", 4, "notes.pdf");
    }
    void pageFileNames()
    {
        auto [stored, number, file] = fetch<QString, int, QString>("stored", "number", "file");
        QCOMPARE(ExchangeWriter::pageFileName(stored, number), file);
    }

    void pageNumbers_data()
    {
        // number -1: none
        test::columns<QString, int>({"file", "number"});
        row("page", "Page 12.jpg", 12);
        row("any case", "PAGE 5.JPG", 5);
        row("no number", "Page x.jpg", 0);
        row("no blank", "Page5.jpg", -1);
        row("other", "scan 3.jpg", -1);
    }
    void pageNumbers()
    {
        auto [file, number] = fetch<QString, int>("file", "number");
        const std::optional<qint32> found = ExchangeReader::pageNumberOf(file);
        QCOMPARE(found ? *found : -1, number);
    }

    void amountsReadBackAsWritten_data()
    {
        test::columns<double, QString>({"amount", "text"});
        row("cents", 1234.5, "1234.5");
        row("negative", -12.25, "-12.25");
        row("whole", 99.0, "99");
        // Forms a shorter writing would give with an exponent, which the reader stops at.
        row("a hundred-thousandth", 0.00001, "0.00001");
        row("very large", 1e20, "100000000000000000000");
        row("a sum that is not its digits", 0.1 + 0.2, "0.30000000000000004");
    }
    void amountsReadBackAsWritten()
    {
        auto [amount, text] = fetch<double, QString>("amount", "text");
        QCOMPARE(ExchangeWriter::amountText(amount), text);
        QCOMPARE(ItemRules::leadingNumber(ExchangeWriter::amountText(amount)), amount);
    }

    void readerIsForgiving_data()
    {
        test::columns<QStringList, QString, QString, QString>(
            {"lines", "date", "description", "amount"});
        row("any order, any case, blanks trimmed, bars read as line breaks",
            QStringList{"  [AMOUNT] ", " 12.50 ", "", "[description]", "  Hello|there  ", "",
                        "[DateOnDocument]", "1/2/2025"},
            "1/2/2025", "Hello\r\nthere", "12.50");
        row("an empty line ends a key",
            QStringList{"[Description]", "", "not a value", "[Amount]", "3"}, "", "", "3");
        row("unknown lines are passed over",
            QStringList{"garbage", "[Colour]", "red", "[Amount]", "7", "trailing"}, "", "", "7");
        row("a key as the last line", QStringList{"[Amount]"}, "", "", "");
    }
    void readerIsForgiving()
    {
        auto [lines, date, description, amount] =
            fetch<QStringList, QString, QString, QString>("lines", "date", "description", "amount");
        const DocumentValues values = ExchangeReader::parseDocument(lines);
        QCOMPARE(values.date, date);
        QCOMPARE(values.description, description);
        QCOMPARE(values.amount, amount);
    }

    void descriptionFile_data()
    {
        test::columns<QStringList, QString>({"lines", "description"});
        row("upper case key, blank lines between",
            QStringList{"[DESCRIPTION]", "", "   ", "  text  "}, "text");
        row("no key", QStringList{"text"}, "");
        row("empty file", QStringList{}, "");
    }
    void descriptionFile()
    {
        auto [lines, description] = fetch<QStringList, QString>("lines", "description");
        QCOMPARE(ExchangeReader::parseDescription(lines), description);
    }

    void exchangeFileNames_data()
    {
        test::columns<QString, bool, bool>({"name", "exchange", "loose"});
        row("marker", "QMR.txt", true, false);
        row("marker upper", "QMR.TXT", true, false);
        row("cabinet", "cabinet.txt", true, false);
        row("drawer", "Drawer.TXT", true, false);
        row("folder", "Folder.txt", true, false);
        row("document is loose above documents", "Document.txt", true, true);
        row("a page", "Page 1.jpg", false, true);
        row("a text file", "notes.txt", false, true);
    }
    void exchangeFileNames()
    {
        auto [name, exchange, loose] = fetch<QString, bool, bool>("name", "exchange", "loose");
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
        test::columns<QStringList, QString, bool>({"chosen", "file", "taken"});
        row("all: anything", QStringList{"*"}, "x.zzz", true);
        row("chosen type", QStringList{"JPG"}, "x.jpg", true);
        row("case does not matter", QStringList{"jpg"}, "X.JPG", true);
        row("other type", QStringList{"JPG"}, "x.pdf", false);
        row("pg is found in jpg,", QStringList{"JPG"}, "x.pg", true);
        row("g is found in jpg,", QStringList{"JPG"}, "x.g", true);
        row("jpgx is not", QStringList{"JPG"}, "x.jpgx", false);
        row("no extension is always taken", QStringList{"PDF"}, "README", true);
        row("nothing chosen takes nothing", QStringList{}, "x.jpg", false);
        row("nothing chosen, no extension", QStringList{}, "README", false);
    }
    void fileTypeFilter()
    {
        auto [chosen, file, taken] = fetch<QStringList, QString, bool>("chosen", "file", "taken");
        const FileTypeFilter filter =
            chosen == QStringList{"*"} ? FileTypeFilter() : FileTypeFilter::of(chosen);
        QCOMPARE(filter.accepts(file), taken);
    }
};

QMR_TEST(TestExchangeFormat)
#include "testexchangeformat.moc"
