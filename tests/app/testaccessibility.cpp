#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <functional>
#include <map>

#include "app/startup.h"
#include "core/settingkeys.h"
#include "navigator/navmenus.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "navigator/pagelistview.h"
#include "navigator/pagepane.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// What a screen reader is told of a control is its accessible name; a control that a person
// works is unusable without one.
bool isControl(QAccessible::Role role)
{
    switch (role) {
    case QAccessible::PushButton:
    case QAccessible::CheckBox:
    case QAccessible::RadioButton:
    case QAccessible::ButtonMenu:
    case QAccessible::ButtonDropDown:
    case QAccessible::ComboBox:
    case QAccessible::EditableText:
    case QAccessible::SpinBox:
    case QAccessible::Slider:
    case QAccessible::List:
    case QAccessible::Tree:
    case QAccessible::Table:
    case QAccessible::PageTab:
        return true;
    default:
        return false;
    }
}

// Names that are no words ("...", "|<") say nothing when read aloud.
bool saysSomething(const QString& name)
{
    for (const QChar c : name)
        if (c.isLetterOrNumber())
            return true;
    return false;
}

// The names some controls must have, by their object names.
const std::map<QString, QString>& expectedNames()
{
    static const std::map<QString, QString> names{
        {"cmdFirst", "First page"}, {"cmdPrev", "Previous page"}, {"cmdNext", "Next page"},
        {"cmdLast", "Last page"},   {"cmdLookup", "Browse…"},     {"imgNow", "Today"},
    };
    return names;
}

QString describe(QAccessibleInterface* a)
{
    QObject* o = a->object();
    return o ? QString(o->metaObject()->className()) + " " + o->objectName()
             : QString("role %1").arg(int(a->role()));
}

// The controls on show under `a` that have no name worth reading.
void unnamedUnder(QAccessibleInterface* a, const QString& where, QStringList& faults)
{
    for (int i = 0; i < a->childCount(); ++i) {
        QAccessibleInterface* c = a->child(i);
        if (!c || c->state().invisible)
            continue;
        const QAccessible::Role role = c->role();
        const QString name = c->text(QAccessible::Name);
        if (isControl(role) && !saysSomething(name))
            faults << where + ": " + describe(c) + " has no name (\"" + name + "\")";
        // The rows of a list are its content, not controls; a combo box's list is its own.
        if (role != QAccessible::List && role != QAccessible::Tree && role != QAccessible::Table &&
            role != QAccessible::ComboBox)
            unnamedUnder(c, where, faults);
    }
}

QStringList unnamedIn(QWidget* window, const QString& where)
{
    QStringList faults;
    unnamedUnder(QAccessible::queryAccessibleInterface(window), where, faults);
    // Buttons whose caption is a sign read the name given, on show or not (the paging buttons
    // hide for a short document); those of the same name captioned in words read their words.
    for (const auto& [object, expected] : expectedNames())
        for (QAbstractButton* c : window->findChildren<QAbstractButton*>(object)) {
            if (saysSomething(c->text()))
                continue;
            const QString name = QAccessible::queryAccessibleInterface(c)->text(QAccessible::Name);
            if (name != expected)
                faults << where + ": " + object + " reads \"" + name + "\", not \"" + expected +
                              "\"";
        }
    return faults;
}

// The windows the application reports to a screen reader.
QList<QObject*> reportedWindows()
{
    QList<QObject*> windows;
    QAccessibleInterface* app = QAccessible::queryAccessibleInterface(qApp);
    for (int i = 0; i < app->childCount(); ++i)
        if (QAccessibleInterface* c = app->child(i))
            windows << c->object();
    return windows;
}

// The windows reported that are not on show, leaving out those from before this run.
QStringList hiddenReported(const QList<QObject*>& before, const QString& when)
{
    QStringList faults;
    QAccessibleInterface* app = QAccessible::queryAccessibleInterface(qApp);
    for (int i = 0; i < app->childCount(); ++i) {
        QAccessibleInterface* c = app->child(i);
        if (c && c->state().invisible && !before.contains(c->object()))
            faults << when + ": hidden " + describe(c) + " is reported";
    }
    return faults;
}

// The unnamed controls of the modal window that `open` brings up, which is then closed.
QStringList modalUnnamed(const QString& what, const std::function<void()>& open)
{
    return test::modalFaults(what, open,
                             [](QWidget* w, const QString& where) { return unnamedIn(w, where); });
}

} // namespace

// Every control of the window that main() assembles, and of what it opens, is named for a
// screen reader, and no hidden window is reported to one.
class TestAccessibility : public QObject
{
    Q_OBJECT
    QTemporaryDir m_sane;

private slots:
    void initTestCase()
    {
        // The scanner settings list devices: SANE's test device alone, no real one probed.
        QFile conf(m_sane.filePath("dll.conf"));
        QVERIFY(conf.open(QIODevice::WriteOnly) && conf.write("test\n") > 0);
        conf.close();
        qputenv("SANE_CONFIG_DIR", m_sane.path().toLocal8Bit());
    }

    void everyControlIsNamedAndNoHiddenWindowReported()
    {
        const QList<QObject*> before = reportedWindows();
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        qint32 spare = 0;
        {
            test::FixtureStore store(home.home());
            store.fillSample();
            spare = store.document(1, QStringLiteral("Spare"));
            store.page(spare, 1, QSize(60, 80));
        }
        home.settings().set(keys::EmailSystem, "CDONTS");
        Startup startup(home.home(), home.settings(), prompter, choosers);
        QVERIFY(startup.start());
        NavWindow* w = startup.window();
        QVERIFY(QTest::qWaitForWindowExposed(w));
        QStringList faults = hiddenReported(before, "after start");

        auto select = [&](const QString& key) {
            QTreeWidgetItem* item = w->tree()->node(key);
            for (QTreeWidgetItem* p = item ? item->parent() : nullptr; p; p = p->parent())
                p->setExpanded(true);
            if (!item)
                return false;
            // Clicked as a person clicks it, so that the window follows.
            w->tree()->scrollToItem(item);
            const QRect r = w->tree()->visualItemRect(item);
            QTest::mouseClick(
                w->tree()->viewport(), Qt::LeftButton, {},
                QPoint(qMin(r.left() + 12, w->tree()->viewport()->width() - 2), r.center().y()));
            // Opened, so that the next level down is filled and can be reached (opening a
            // cabinet may build its node anew).
            if (QTreeWidgetItem* current = w->tree()->currentItem())
                current->setExpanded(true);
            return w->tree()->selectedKey() == key;
        };
        auto dialog = [&](const char* command) {
            faults << modalUnnamed(command, [&] { w->menus().run(command); });
        };
        // The main window at each level, and the properties of each item.
        const std::pair<const char*, const char*> levels[] = {
            {"ROOT", "mnuPopupRootNewFileCabinet"},
            {"CAB1", "mnuPopupCabinetProperties"},
            {"DRW1", "mnuPopupDrawerProperties"},
            {"FLD1", "mnuPopupFolderProperties"},
            {"DOC1", "mnuPopupDocumentProperties"}};
        for (const auto& [node, properties] : levels) {
            QVERIFY2(select(node), node);
            faults << unnamedIn(w, QString("main window at ") + node);
            dialog(properties);
        }
        // The page pane in both its views.
        for (const char* view : {"imgList", "imgThumbnail"}) {
            w->findChild<QToolButton*>(view)->click();
            faults << unnamedIn(w, QString("main window after ") + view);
        }

        dialog("mnuPopupDocumentPrint");
        w->pageList()->list()->selectPage(1);
        for (const char* command :
             {"mnuPopupPageProperties", "mnuPopupPageRenumber", "mnuFileFind", "mnuScanSettings",
              "mnuPrintSettings", "mnuEmailSettings", "mnuViewSettings", "mnuToolsImportFiles",
              "mnuToolsExportCabinet", "mnuToolsDrawerTemplates", "mnuToolsCreateSampleCabinet",
              "mnuHelpHelpTopics", "mnuHelpAbout"})
            dialog(command);

        // The page viewer, while open and once closed.
        w->menus().run("mnuPopupPageOpen");
        QWidget* viewer = nullptr;
        QTRY_VERIFY(viewer = w->findChild<QWidget*>("frmPageView"));
        QVERIFY(QTest::qWaitForWindowExposed(viewer));
        faults << unnamedIn(viewer, "page viewer");
        viewer->close();

        // A command that shows the progress window, which is idle again once it is done.
        QVERIFY(select("FLD1"));
        QVERIFY(select(QString("DOC%1").arg(spare)));
        prompter.expect("Delete 'Spare'?", Prompter::Answer::Yes);
        w->menus().run("mnuPopupDocumentDelete");
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        // What is hidden goes once the events under way are through.
        const QString after = "after the dialogs, the viewer and a deletion";
        (void)QTest::qWaitFor([&] { return hiddenReported(before, after).isEmpty(); });
        faults << hiddenReported(before, after);
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join('\n')));
    }
};

QMR_TEST(TestAccessibility)
#include "testaccessibility.moc"
