#include <QTest>

#include "core/nameorder.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::columns;
using qmr::test::row;

class TestNameOrder : public QObject
{
    Q_OBJECT
private slots:
    void compareNames_data()
    {
        columns<QString, QString, int>({"a", "b", "sign"});
        row("case only", "tax RETURNS", "Tax Returns", 0);
        row("accent before the next letter", "école", "Emma", -1);
        row("accented after plain", "école", "Ecole", 1);
        // Where code-point order says the opposite: a capital stands before every small letter.
        row("capital of a later letter", "B", "a", 1);
        row("small of an earlier letter", "a", "B", -1);
        // Letters, digits and blanks alone: blank, then digits, then letters.
        row("blank before a letter", "a b", "ab", -1);
        row("blank before a digit", "Invoice 9", "Invoice10", -1);
        row("digit before a letter", "Folder 2", "Folder a", -1);
        row("shorter first", "Folder", "folder 1", -1);
        // Punctuation stands before letters and digits, whatever its code point.
        row("underscore before a digit", "_", "0", -1);
        row("at sign before a digit", "@", "0", -1);
        row("brace before letters", "{x}", "abc", -1);
        row("letters after a brace", "abc", "{x}", 1);
        row("apostrophe after hyphen", "'", "-Lg", 1);
    }
    void compareNames()
    {
        auto [a, b, sign] = test::fetch<QString, QString, int>("a", "b", "sign");
        const int c = qmr::compareNames(a, b);
        QCOMPARE((c > 0) - (c < 0), sign);
        QCOMPARE(nameLess(a, b), sign < 0 || (sign == 0 && a < b));
        // The general order, which plain names skip, says the same.
        const int general = compareNamesByCollator(a, b);
        QCOMPARE((general > 0) - (general < 0), sign);
    }
};

QMR_TEST(TestNameOrder)
#include "testnameorder.moc"
