#include <QTest>

#include "core/pagewords.h"
#include "store/cabinetlock.h"
#include "store/textindex.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"
#include "text/textfind.h"

using namespace qmr;
using namespace qmr::test;

namespace {

QList<TextIndex::Word> words(const QString& text)
{
    QList<TextIndex::Word> list;
    for (const QString& word : text.split(' '))
        list << TextIndex::Word{word, QRect(0, 0, 10, 10)};
    return list;
}

QStringList shown(const QList<TextFind::Document>& documents)
{
    QStringList lines;
    for (const TextFind::Document& d : documents) {
        QStringList numbers;
        for (const qint32 n : d.pageNumbers)
            numbers << QString::number(n);
        lines << d.names.join('/') + ": " + numbers.join(',');
    }
    return lines;
}

} // namespace

// Pages found by their text come back as their documents, in the order of their names; a
// locked cabinet's only once it is open.
class TestTextFind : public QObject
{
    Q_OBJECT
private slots:
    void documentsOfThePages()
    {
        TestHome home;
        FixtureStore store(home.home());
        const qint32 open = store.cabinet("Home");
        const qint32 locked = store.cabinet("Private", "secret");
        const qint32 gas = store.folder(store.drawer(open, "Bills"), "Gas");
        const qint32 winter = store.document(gas, "Winter");
        const qint32 autumn = store.document(gas, "Autumn");
        const qint32 bank =
            store.document(store.folder(store.drawer(locked, "Bank"), "Loans"), "Mortgage");
        TextIndex index(home.path());
        index.open();
        const TextIndex::Stamp stamp{1, 1};
        index.put(store.page(winter, 1), stamp, words("Northwind invoice"));
        index.put(store.page(winter, 2), stamp, words("terms"));
        index.put(store.page(winter, 3), stamp, words("invoice total"));
        index.put(store.page(autumn, 1), stamp, words("invoice"));
        index.put(store.page(bank, 1), stamp, words("invoice for the loan"));
        const qint32 gone = store.page(autumn, 2);
        index.put(gone, stamp, words("invoice"));
        store.db().execute("DELETE FROM Page WHERE PageId = ?", {gone});

        CabinetLock locks(store.db());
        const PageWords invoice = PageWords::parse("invoice");
        QCOMPARE(shown(TextFind::documents(store.db(), index, invoice, locks)),
                 (QStringList{"Home/Bills/Gas/Autumn: 1", "Home/Bills/Gas/Winter: 1,3"}));
        QCOMPARE(shown(TextFind::documents(store.db(), index, PageWords::parse("nothing"), locks)),
                 QStringList{});
        locks.recordOpen(locked);
        QCOMPARE(shown(TextFind::documents(store.db(), index, invoice, locks)),
                 (QStringList{"Home/Bills/Gas/Autumn: 1", "Home/Bills/Gas/Winter: 1,3",
                              "Private/Bank/Loans/Mortgage: 1"}));
    }
};

QMR_TEST(TestTextFind)
#include "testtextfind.moc"
