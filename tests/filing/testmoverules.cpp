#include <QTest>

#include "filing/moverules.h"
#include "tests/support/testrunner.h"

using namespace qmr;

class TestMoveRules : public QObject
{
    Q_OBJECT
private slots:
    void canDrag_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("can");
        for (const char* key : {"DRW3", "FLD12", "DOC1", "PAG7"})
            QTest::newRow(key) << key << true;
        // A cabinet never moves; found items, the roots, nothing and "drw" in lower case.
        for (const char* key :
             {"CAB1", "ROOT", "ROOTFOUND", "FCB1", "FDW2", "FFD3", "FDC4", "", "drw3"})
            QTest::newRow(*key ? key : "nothing") << key << false;
    }
    void canDrag()
    {
        QFETCH(QString, key);
        QTEST(MoveRules::canDrag(key), "can");
    }

    void canDrop_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("can");
        const auto rows = [](std::initializer_list<const char*> pairs, bool can) {
            for (const char* pair : pairs) {
                const QStringList st = QString(pair).split('>');
                QTest::newRow(pair) << st.at(0) << st.at(1) << can;
            }
        };
        // One level up, and a page also on a folder; "PAG" is a file from outside.
        rows({"DRW3>CAB12", "FLD3>DRW1", "DOC3>FLD1", "PAG3>DOC1", "PAG3>FLD1", "PAG>DOC1",
              "PAG>FLD1"},
             true);
        // Everything else is refused.
        rows({"PAG>DRW1", "PAG>CAB1", "PAG>ROOT", "DRW3>DRW1", "DRW3>ROOT", "FLD3>CAB1",
              "FLD3>FLD1", "DOC3>DRW1", "DOC3>DOC1", "PAG3>PAG1", "PAG3>DRW1", "CAB1>ROOT",
              "DRW3>FCB1", "PAG3>FDC1", "FDW3>CAB1", "FDC3>FLD1", "DRW3>"},
             false);
    }
    void canDrop()
    {
        QFETCH(QString, source);
        QFETCH(QString, target);
        QTEST(MoveRules::canDrop(source, target), "can");
    }
};

QMR_TEST(TestMoveRules)
#include "testmoverules.moc"
