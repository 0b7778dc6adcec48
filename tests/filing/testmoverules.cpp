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
        QTest::newRow("drawer") << "DRW3" << true;
        QTest::newRow("folder") << "FLD12" << true;
        QTest::newRow("document") << "DOC1" << true;
        QTest::newRow("page") << "PAG7" << true;
        QTest::newRow("cabinet never moves") << "CAB1" << false;
        QTest::newRow("root") << "ROOT" << false;
        QTest::newRow("found root") << "ROOTFOUND" << false;
        QTest::newRow("found cabinet") << "FCB1" << false;
        QTest::newRow("found drawer") << "FDW2" << false;
        QTest::newRow("found folder") << "FFD3" << false;
        QTest::newRow("found document") << "FDC4" << false;
        QTest::newRow("nothing") << "" << false;
        QTest::newRow("lower case is another prefix") << "drw3" << false;
    }
    void canDrag()
    {
        QFETCH(QString, key);
        QFETCH(bool, can);
        QCOMPARE(MoveRules::canDrag(key), can);
    }

    void canDrop_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("can");
        // One level up, and a page also on a folder.
        QTest::newRow("drawer on cabinet") << "DRW3"
                                           << "CAB12" << true;
        QTest::newRow("folder on drawer") << "FLD3"
                                          << "DRW1" << true;
        QTest::newRow("document on folder") << "DOC3"
                                            << "FLD1" << true;
        QTest::newRow("page on document") << "PAG3"
                                          << "DOC1" << true;
        QTest::newRow("page on folder") << "PAG3"
                                        << "FLD1" << true;
        QTest::newRow("file from outside on document") << "PAG"
                                                       << "DOC1" << true;
        QTest::newRow("file from outside on folder") << "PAG"
                                                     << "FLD1" << true;
        // Everything else is refused.
        QTest::newRow("file on drawer") << "PAG"
                                        << "DRW1" << false;
        QTest::newRow("file on cabinet") << "PAG"
                                         << "CAB1" << false;
        QTest::newRow("file on root") << "PAG"
                                      << "ROOT" << false;
        QTest::newRow("drawer on drawer") << "DRW3"
                                          << "DRW1" << false;
        QTest::newRow("drawer on root") << "DRW3"
                                        << "ROOT" << false;
        QTest::newRow("folder on cabinet") << "FLD3"
                                           << "CAB1" << false;
        QTest::newRow("folder on folder") << "FLD3"
                                          << "FLD1" << false;
        QTest::newRow("document on drawer") << "DOC3"
                                            << "DRW1" << false;
        QTest::newRow("document on document") << "DOC3"
                                              << "DOC1" << false;
        QTest::newRow("page on page") << "PAG3"
                                      << "PAG1" << false;
        QTest::newRow("page on drawer") << "PAG3"
                                        << "DRW1" << false;
        QTest::newRow("cabinet on root") << "CAB1"
                                         << "ROOT" << false;
        QTest::newRow("drawer on found cabinet") << "DRW3"
                                                 << "FCB1" << false;
        QTest::newRow("page on found document") << "PAG3"
                                                << "FDC1" << false;
        QTest::newRow("found drawer on cabinet") << "FDW3"
                                                 << "CAB1" << false;
        QTest::newRow("found document on folder") << "FDC3"
                                                  << "FLD1" << false;
        QTest::newRow("on nothing") << "DRW3"
                                    << "" << false;
    }
    void canDrop()
    {
        QFETCH(QString, source);
        QFETCH(QString, target);
        QFETCH(bool, can);
        QCOMPARE(MoveRules::canDrop(source, target), can);
    }
};

QMR_TEST(TestMoveRules)
#include "testmoverules.moc"
