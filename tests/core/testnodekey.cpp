#include <QTest>

#include "core/nodekey.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using qmr::test::row;
using namespace qmr;
using qmr::test::columns;

class TestNodeKey : public QObject
{
    Q_OBJECT
private slots:
    void parse_data()
    {
        // level, foundLevel: -1 for none
        columns<QString, QString, int, int, int, bool, bool>(
            {"text", "prefix", "id", "level", "foundLevel", "root", "foundRoot"});

        row("cabinet 12", "CAB12", "CAB", 12, 0, -1, false, false);
        row("cabinet 1", "CAB1", "CAB", 1, 0, -1, false, false);
        row("drawer", "DRW7", "DRW", 7, 1, -1, false, false);
        row("folder", "FLD123456", "FLD", 123456, 2, -1, false, false);
        row("document", "DOC0", "DOC", 0, 3, -1, false, false);
        row("page", "PAG99", "PAG", 99, 4, -1, false, false);
        row("found cabinet", "FCB3", "FCB", 3, -1, 0, false, false);
        row("found cabinet 0", "FCB0", "FCB", 0, -1, 0, false, false);
        row("found document", "FDC5", "FDC", 5, -1, 3, false, false);
        row("root", "ROOT", "ROO", -1, -1, -1, true, false);
        row("found root", "ROOTFOUND", "ROO", -1, -1, -1, false, true);
        row("bare prefix", "CAB", "CAB", -1, -1, -1, false, false);
        row("bare found prefix", "FDC", "FDC", -1, -1, -1, false, false);
        row("not a number", "CABx1", "CAB", -1, -1, -1, false, false);
        row("signed", "CAB-1", "CAB", -1, -1, -1, false, false);
        row("lower case", "cab4", "cab", 4, -1, -1, false, false);
        row("empty", "", "", -1, -1, -1, false, false);
    }
    void parse()
    {
        auto [text, prefix, id, level, foundLevel, root, foundRoot] =
            test::fetch<QString, QString, int, int, int, bool, bool>(
                "text", "prefix", "id", "level", "foundLevel", "root", "foundRoot");
        const NodeKey key = NodeKey::parse(text);
        QCOMPARE(key.text(), text);
        QCOMPARE(key.prefix(), prefix);
        QCOMPARE(key.id(), id);
        QCOMPARE(key.level() ? int(*key.level()) : -1, level);
        QCOMPARE(key.foundLevel() ? int(*key.foundLevel()) : -1, foundLevel);
        QCOMPARE(key.isRoot(), root);
        QCOMPARE(key.isFoundRoot(), foundRoot);
    }

    void keysCompareWhole()
    {
        QVERIFY(!(NodeKey::parse("CAB1") == NodeKey::parse("CAB12")));
        QCOMPARE(NodeKey::of(Level::Cabinet, 12), NodeKey::parse("CAB12"));
        QCOMPARE(NodeKey::found(Level::Folder, 8).text(), QStringLiteral("FFD8"));
        QCOMPARE(NodeKey::of(Level::Document, 2147483647).id(), 2147483647);
    }
};

QMR_TEST(TestNodeKey)
#include "testnodekey.moc"
