#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <functional>

#include "core/textfile.h"
#include "navharness.h"
#include "print/printcommands.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::NavHarness;

namespace {

// Notes what the next modal window shows, then closes it; one that never comes leaves
// `seen` empty.
void noteModal(QObject* context, QString* seen, std::function<QString(QWidget*)> describe,
               int tries = 200)
{
    QTimer::singleShot(20, context, [=] {
        if (QWidget* w = QApplication::activeModalWidget()) {
            *seen = describe(w);
            w->close();
        } else if (tries > 0) {
            noteModal(context, seen, describe, tries - 1);
        }
    });
}

QString label(QWidget* w, const char* name)
{
    auto* l = w->findChild<QLabel*>(QLatin1String(name));
    return l ? l->text() : QStringLiteral("<missing>");
}

QString edit(QWidget* w, const char* name)
{
    auto* e = w->findChild<QLineEdit*>(QLatin1String(name));
    return e ? e->text() : QStringLiteral("<missing>");
}

void trigger(NavHarness& h, const char* action)
{
    QAction* a = h.window->menus().action(QLatin1String(action));
    QVERIFY2(a && a->isEnabled(), action);
    a->trigger();
}

} // namespace

class TestPrintHelpMenus : public QObject
{
    Q_OBJECT
private slots:
    void printEntriesReachTheirTargets()
    {
        NavHarness h;
        h.loadSample();
        h.window->printCommands().setPrinters({});
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        QString seen;
        noteModal(h.window.get(), &seen, [](QWidget* w) {
            return w->objectName() + "|" + label(w, "lblItem") + "|" + edit(w, "txtFrom") + "-" +
                   edit(w, "txtTo");
        });
        trigger(h, "mnuPopupDocumentPrint");
        QCOMPARE(seen, QString("frmPrintDocument|Document: March statement|1-2"));

        QVERIFY(h.window->pageList()->selectPage(2));
        h.setSource(ContextSource::PageList);
        noteModal(h.window.get(), &seen,
                  [](QWidget* w) { return w->objectName() + "|" + label(w, "lblItem"); });
        trigger(h, "mnuPopupPagePrint");
        QCOMPARE(seen, QString("frmPrint|Page 2 of March statement"));

        noteModal(h.window.get(), &seen,
                  [](QWidget* w) { return w->objectName() + "|" + edit(w, "txtHeightPct"); });
        trigger(h, "mnuPrintSettings");
        QCOMPARE(seen, QString("frmPrintSettings|100"));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void helpAndAbout()
    {
        NavHarness h;
        h.loadSample();
        QVERIFY(TextFile::writeLines(h.home.file("qmrhelp.txt"), {"[toc]", "1=Only topic"}));
        QAction* topics = h.window->menus().action("mnuHelpHelpTopics");
        QCOMPARE(topics->shortcut(), QKeySequence(Qt::Key_F1));
        QString seen;
        noteModal(h.window.get(), &seen,
                  [](QWidget* w) { return w->objectName() + "|" + label(w, "lblLine0"); });
        trigger(h, "mnuHelpHelpTopics");
        QCOMPARE(seen.section('|', 0, 0), QString("frmHelp"));

        noteModal(h.window.get(), &seen,
                  [](QWidget* w) { return w->windowTitle() + "|" + label(w, "lblPgCnt"); });
        trigger(h, "mnuHelpAbout");
        QCOMPARE(seen, QString("About Quillmere|Pages stored: 3"));
    }
};

QMR_TEST(TestPrintHelpMenus)
#include "testprinthelpmenus.moc"
