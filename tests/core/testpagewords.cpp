#include <QTest>

#include "core/pagewords.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// Terms as one line: a term's words with spaces, a star for a beginning, "|" between terms.
QString shown(const PageWords& words)
{
    QStringList terms;
    for (const PageWords::Term& term : words.terms())
        terms << term.words.join(' ') + (term.prefix ? "*" : "");
    return terms.join('|');
}

} // namespace

class TestPageWords : public QObject
{
    Q_OBJECT
private slots:
    void parse_data()
    {
        columns<QString, QString>({"typed", "terms"});
        row("words", "gas  invoice", "gas|invoice");
        row("a phrase and a beginning", "\"Gas Bill\" tax*", "gas bill|tax*");
        row("a phrase's beginning", "\"tax ret\"*", "tax ret*");
        row("case and accents", "Müller ÉCOLE", "muller|ecole");
        row("punctuation splits a word", "e-mail, O'Brien", "e mail|o brien");
        row("a phrase not closed", "total \"amount du", "total|amount du");
        row("punctuation alone", "- !! * \"\"", "");
        row("a star inside a word", "in*voice", "in voice");
        row("a ligature", "\xEF\xAC\x81le", "file");
    }
    void parse()
    {
        auto [typed, terms] = test::fetch<QString, QString>("typed", "terms");
        QCOMPARE(shown(PageWords::parse(typed)), terms);
    }

    void matchedWords_data()
    {
        columns<QString, QList<int>>({"typed", "matched"});
        row("a word twice", "TOTAL", QList<int>{0, 5});
        row("a phrase", "\"amount due\"", QList<int>{1, 2});
        row("a phrase in another order", "\"due amount\"", QList<int>{});
        row("a beginning", "amo*", QList<int>{1});
        row("a whole word is no beginning of a longer one", "amo", QList<int>{});
        row("a phrase's beginning", "\"due 4\"*", QList<int>{2, 3});
        row("two terms", "eur due", QList<int>{2, 4});
        row("a word not there", "invoice", QList<int>{});
    }
    void matchedWords()
    {
        auto [typed, matched] = test::fetch<QString, QList<int>>("typed", "matched");
        const QStringList page = {"total", "amount", "due", "42", "eur", "total"};
        QCOMPARE(PageWords::parse(typed).matchedWords(page), matched);
    }
};

QMR_TEST(TestPageWords)
#include "testpagewords.moc"
