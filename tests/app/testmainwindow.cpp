#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QDragEnterEvent>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <algorithm>
#include <functional>
#include <map>
#include <tuple>

#include "app/appicon.h"
#include "app/progresswindow.h"
#include "app/splashwindow.h"
#include "dialogs/passworddialog.h"
#include "filing/clipboardfiles.h"
#include "navigator/containerlist.h"
#include "navigator/navdragdrop.h"
#include "store/itemstore.h"
#include "store/pagestore.h"
#include "store/session.h"
#include "tests/app/apprun.h"

using namespace qmr;

namespace {

// Runs `open`, which brings up a pop-up menu, and hands that menu to `look` before closing it.
bool withPopup(const std::function<void()>& open, const std::function<void(QMenu*)>& look)
{
    bool seen = false;
    QTimer::singleShot(0, [&] {
        if (!QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }))
            return; // no menu came up: `seen` says so
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            seen = true;
            look(menu);
            menu->close();
        }
    });
    open();
    const bool closed =
        QTest::qWaitFor([] { return QApplication::activePopupWidget() == nullptr; });
    return seen && closed;
}

// A drop of `data` on a control's viewport, as a drag from a file manager or from the window itself
// ends.
bool dropOn(QWidget* viewport, const QPoint& at, const QMimeData* data)
{
    const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(at, actions, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &enter);
    QDragMoveEvent move(at, actions, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &move);
    QDropEvent dropped(QPointF(at), actions, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &dropped);
    return dropped.isAccepted();
}

// A picture file as a file manager hands it over: its path in the data's URLs (none when the
// file could not be written).
QMimeData* pictureFile(const QString& path)
{
    QImage picture(40, 50, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    auto* data = new QMimeData;
    if (picture.save(path))
        data->setUrls({QUrl::fromLocalFile(path)});
    return data;
}

// Whether any pixel of a picture is one that `drawn` picks out.
bool anyPixel(const QImage& image, const std::function<bool(QRgb)>& drawn)
{
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (drawn(image.pixel(x, y)))
                return true;
    return false;
}

// ---- access keys and focus ---------------------------------------------------------------

// Each access key ("&Find" takes F) and what takes it; a key taken twice is a clash.
using KeyOwners = std::map<QString, QStringList>;

void take(KeyOwners& owners, const QString& text, const QString& what)
{
    const QString key = QKeySequence::mnemonic(text).toString(QKeySequence::PortableText);
    if (!key.isEmpty())
        owners[key] << what + " \"" + text + "\"";
}

QStringList clashesOf(const KeyOwners& owners, const QString& where)
{
    QStringList clashes;
    for (const auto& [key, what] : owners)
        if (what.size() > 1)
            clashes << where + ": " + key + " is taken by " + what.join(", ");
    return clashes;
}

// The keys that a window's controls on show take: buttons, labels with a buddy, group boxes, tabs,
// and every entry its menu bar holds (a hidden one keeps its key).
KeyOwners windowKeys(QWidget* window)
{
    KeyOwners owners;
    for (QWidget* w : window->findChildren<QWidget*>()) {
        if (w->window() != window || !w->isVisible())
            continue;
        if (auto* button = qobject_cast<QAbstractButton*>(w))
            take(owners, button->text(), button->objectName());
        else if (auto* label = qobject_cast<QLabel*>(w); label && label->buddy())
            take(owners, label->text(), label->objectName());
        else if (auto* group = qobject_cast<QGroupBox*>(w))
            take(owners, group->title(), group->objectName());
        else if (auto* tabs = qobject_cast<QTabBar*>(w)) {
            for (int i = 0; i < tabs->count(); ++i)
                take(owners, tabs->tabText(i), "tab");
        } else if (auto* bar = qobject_cast<QMenuBar*>(w)) {
            for (QAction* a : bar->actions())
                take(owners, a->text(), a->objectName() + (a->isVisible() ? "" : " (hidden)"));
        }
    }
    return owners;
}

// The clashes of a window with each of its tabs on show, and those of each of its menus.
QStringList keyClashes(QWidget* window, const QString& where)
{
    QStringList clashes = clashesOf(windowKeys(window), where);
    for (QTabWidget* tabs : window->findChildren<QTabWidget*>()) {
        const int shown = tabs->currentIndex();
        for (int i = 0; tabs->isVisible() && i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            clashes << clashesOf(windowKeys(window), where + " on " + tabs->tabText(i));
        }
        tabs->setCurrentIndex(shown);
    }
    for (QMenuBar* bar : window->findChildren<QMenuBar*>()) {
        for (QMenu* menu : bar->findChildren<QMenu*>()) {
            KeyOwners owners;
            for (QAction* a : menu->actions())
                take(owners, a->text(), a->objectName());
            clashes << clashesOf(owners, where + " menu " + menu->objectName());
        }
    }
    clashes.removeDuplicates();
    return clashes;
}

// Whether a control is one to type into or choose from.
bool isField(const QWidget* w)
{
    if (qobject_cast<const QLineEdit*>(w) || qobject_cast<const QPlainTextEdit*>(w) ||
        qobject_cast<const QTextEdit*>(w))
        return !w->property("readOnly").toBool();
    return qobject_cast<const QAbstractSpinBox*>(w) || qobject_cast<const QComboBox*>(w) ||
           qobject_cast<const QAbstractItemView*>(w);
}

// "" when a window that has fields opened with the focus in the first of them by Tab.
QString focusFault(QWidget* window, const QString& where)
{
    (void)QTest::qWaitFor(
        [&] {
            return QApplication::focusWidget() && QApplication::focusWidget()->window() == window;
        },
        2000);
    QWidget* first = nullptr;
    for (QWidget* w = window->nextInFocusChain(); w != window && !first; w = w->nextInFocusChain())
        if (w->window() == window && w->isVisible() && w->isEnabled() &&
            (w->focusPolicy() & Qt::TabFocus) && isField(w))
            first = w;
    QWidget* focus = QApplication::focusWidget();
    if (!first || (focus && (focus == first || first->isAncestorOf(focus))))
        return QString();
    return where + ": the focus is on " +
           (focus ? QString(focus->metaObject()->className()) + " " + focus->objectName()
                  : QString("nothing")) +
           ", not on " + first->objectName();
}

// ---- screen readers and icons -------------------------------------------------------------

// What a screen reader is told of a control is its accessible name; a control that a person works
// is unusable without one.
bool isControl(QAccessible::Role role)
{
    using R = QAccessible;
    return QList<QAccessible::Role>{R::PushButton,     R::CheckBox, R::RadioButton,  R::ButtonMenu,
                                    R::ButtonDropDown, R::ComboBox, R::EditableText, R::SpinBox,
                                    R::Slider,         R::List,     R::Tree,         R::Table,
                                    R::PageTab}
        .contains(role);
}

// Names that are no words ("...", "|<") say nothing when read aloud.
bool saysSomething(const QString& name)
{
    return std::any_of(name.begin(), name.end(), [](QChar c) { return c.isLetterOrNumber(); });
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
    // Buttons whose caption is a sign read the name given, on show or not (the paging buttons hide
    // for a short document); those of the same name captioned in words read their words.
    const std::map<QString, QString> names{{"cmdFirst", "First page"}, {"cmdPrev", "Previous page"},
                                           {"cmdNext", "Next page"},   {"cmdLast", "Last page"},
                                           {"cmdLookup", "Browse…"},   {"imgNow", "Today"}};
    for (const auto& [object, expected] : names)
        for (QAbstractButton* c : window->findChildren<QAbstractButton*>(object)) {
            const QString name = QAccessible::queryAccessibleInterface(c)->text(QAccessible::Name);
            if (!saysSomething(c->text()) && name != expected)
                faults << where + ": " + object + " reads \"" + name + "\", not \"" + expected +
                              "\"";
        }
    return faults;
}

// The windows the application reports to a screen reader; those hidden alone, if asked.
QList<QObject*> reportedWindows(bool hiddenOnly = false)
{
    QList<QObject*> windows;
    QAccessibleInterface* app = QAccessible::queryAccessibleInterface(qApp);
    for (int i = 0; i < app->childCount(); ++i)
        if (QAccessibleInterface* c = app->child(i); c && (!hiddenOnly || c->state().invisible))
            windows << c->object();
    return windows;
}

QStringList hiddenReported(const QList<QObject*>& before, const QString& when)
{
    QStringList faults;
    for (QObject* o : reportedWindows(true))
        if (!before.contains(o))
            faults << when + ": hidden " + QString(o ? o->metaObject()->className() : "?") + " " +
                          (o ? o->objectName() : QString()) + " is reported";
    return faults;
}

QString iconFault(QWidget* window, const QString& where)
{
    const auto picture = [](const QIcon& icon) {
        return icon.pixmap(32, 32).toImage().convertToFormat(QImage::Format_ARGB32);
    };
    return picture(window->windowIcon()) == picture(AppIcon::icon())
               ? QString()
               : where + ": the window does not show the program's icon";
}

// Every captioned push button of `window` as "objectName caption", sorted, with what is wrong with
// its icon (none, blank, or no room for it beside the caption) added to `faults`.
QStringList captionsOf(QWidget* window, QStringList& faults)
{
    QStringList captions;
    for (QPushButton* b : window->findChildren<QPushButton*>()) {
        if (b->text().isEmpty() || !b->isVisibleTo(window))
            continue;
        const QString what = window->objectName() + '/' + b->objectName();
        captions << b->objectName() + ' ' + b->text();
        if (!b->text().contains(QRegularExpression("[A-Za-z]"))) {
            // A caption of signs is a picture already.
            if (!b->icon().isNull())
                faults << what + " shows an icon beside its signs";
            continue;
        }
        // Whatever the theme, the icon draws something: a name whose picture is missing does not.
        if (!anyPixel(b->icon().pixmap(16, 16).toImage(), [](QRgb c) { return qAlpha(c) > 0; }))
            faults << what + " has no icon";
        const int caption = b->fontMetrics().horizontalAdvance(QString(b->text()).remove('&'));
        if (b->width() < caption + b->iconSize().width() + 8)
            faults << what + QString(" is %1 px wide, too narrow for its icon and caption")
                                 .arg(b->width());
    }
    captions.sort();
    return captions;
}

// What is looked at in a window: its access keys and, in a dialog, where the focus opens; the
// names of its controls; both. Each window is looked at for its icon.
enum Checks { Keys = 1, Names = 2, Both = 3 };

// The faults of a window on show.
QStringList windowFaults(QWidget* window, const QString& where, int checks = Both)
{
    QStringList faults{iconFault(window, where)};
    if (checks & Keys)
        faults << keyClashes(window, where);
    if (checks & Names)
        faults << unnamedIn(window, where);
    return faults;
}

// The faults of the modal window that `open` brings up, which is then closed.
QStringList modalFaults(const QString& what, const std::function<void()>& open, int checks)
{
    return test::modalFaults(what, open, [checks](QWidget* w, const QString& where) {
        // The focus is read first: looking for clashes moves it.
        QStringList faults{(checks & Keys) ? focusFault(w, where) : QString()};
        return faults << windowFaults(w, where, checks);
    });
}

} // namespace

// The main window that main() assembles, as a new user meets it.
class TestMainWindow : public QObject
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

    void copiedAndCutPagesArePasted()
    {
        test::AppRun run;
        {
            // More pages than one block, the last stored first: the store's order is not theirs.
            test::FixtureStore store(run.home.home());
            store.fillSample();
            const qint32 report = store.document(1, QStringLiteral("Long report"));
            for (int n = 30; n >= 1; --n)
                store.page(report, n, QSize(60, 80));
            run.home.settings().set(keys::LastNavTreeNodeKey, QString("DOC%1").arg(report));
        }
        run.home.settings().set(keys::ThumbView, "list");
        QVERIFY(run.start());
        // Restored at start, the list holds the whole document, its numbers in order, and no
        // heading nor value is cut short.
        QCOMPARE(run.pages()->count(), 30);
        QCOMPARE(run.pages()->textAt(29), QString("30"));
        auto* details = qobject_cast<QTreeView*>(run.pageView());
        QVERIFY(details && details->isVisible());
        for (int column = 0; column < 5; ++column) {
            int needed = details->header()->sectionSizeHint(column);
            for (int row = 0; row < details->model()->rowCount(); ++row)
                needed =
                    qMax(needed,
                         details->sizeHintForIndex(details->model()->index(row, column)).width());
            QVERIFY2(details->columnWidth(column) >= needed,
                     qPrintable(QString::asprintf("column %d: %d wide, %d needed", column,
                                                  details->columnWidth(column), needed)));
        }
        QGuiApplication::clipboard()->clear();

        // All pages copied in the page list.
        run.pageView()->setFocus();
        QTest::keyClick(run.pageView(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(run.pageView(), Qt::Key_C, Qt::ControlModifier);
        const QStringList copied = ClipboardFiles::getClipboardFiles();
        QCOMPARE(copied.size(), 30);

        // Into the Return, whose one page stays first.
        run.click({"DRW2", "DOC3"});
        run.pageView()->setFocus();
        QTest::keyClick(run.pageView(), Qt::Key_V, Qt::ControlModifier);
        const QVector<PageRow> rows = run.session().pages().pages(3);
        QCOMPARE(rows.size(), 31);
        for (int i = 0; i < 30; ++i) {
            const PageRow& row = rows.at(i + 1);
            QCOMPARE(row.pageNumber, i + 2);
            QFile made(run.session().paths().pagePath(row.id, row.filename));
            QFile source(copied.at(i));
            QVERIFY(made.open(QIODevice::ReadOnly) && source.open(QIODevice::ReadOnly));
            QCOMPARE(made.readAll(), source.readAll());
        }
        QCOMPARE(run.pages()->count(), 31);

        // A page cut goes at the next Ctrl+V, also into a document that has none.
        run.pages()->selectPage(rows.first().id);
        run.pageView()->setFocus();
        QTest::keyClick(run.pageView(), Qt::Key_X, Qt::ControlModifier);
        run.click({"DRW1", "DOC2"});
        QVERIFY(withPopup(
            [&] {
                QTest::mouseClick(run.pageView()->viewport(), Qt::RightButton, {}, QPoint(30, 30));
            },
            [&](QMenu*) { QVERIFY(run.action("mnuPopupPagePaste")->isEnabled()); }));
        run.pageView()->setFocus();
        QTest::keyClick(run.pageView(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(run.session().pages().documentOf(rows.first().id), 2);
        QCOMPARE(run.pages()->count(), 1);
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }

    void emptyPlacesSayHowTheyFill_data()
    {
        test::columns<QString, QString>({"node", "hint"});
        test::row("document", "CAB1,DRW1,DOC2",
                  "No pages yet. Scan one with Scan Page, drop image files here, or paste pages "
                  "with Ctrl+V.");
        test::row("folder", "CAB1,FLD2",
                  "No documents yet. Add one with New Document in the Folder menu, or drop image "
                  "files here.");
    }
    void emptyPlacesSayHowTheyFill()
    {
        const auto [node, hint] = test::fetch<QString, QString>("node", "hint");
        test::AppRun run;
        test::FixtureStore(run.home.home()).fillSample();
        QVERIFY(run.start());
        run.click(node.split(','));
        const bool pages = node.endsWith("DOC2");
        QAbstractItemView* view =
            pages ? run.pageView() : static_cast<QAbstractItemView*>(run.window()->list());
        QVERIFY(view->isVisible());
        QCOMPARE(view->model()->rowCount(), 0);
        QCOMPARE(view->property("emptyHint").toString(), hint);
        // The hint is drawn: something but the background shows on the viewport.
        const QImage drawn = view->viewport()->grab().toImage();
        QVERIFY(anyPixel(drawn, [&](QRgb c) { return c != drawn.pixel(1, 1); }));
        QCOMPARE(run.window()->findChild<QLabel*>("lblStatus")->text(), QString());

        // Files dropped on the empty place arrive there.
        QTemporaryDir outside;
        const std::unique_ptr<QMimeData> data(pictureFile(outside.filePath("dropped.jpg")));
        QVERIFY(data->hasUrls());
        QSignalSpy done(&run.window()->dragDrop(), &NavDragDrop::dropDone);
        QVERIFY(dropOn(view->viewport(), QPoint(20, 20), data.get()));
        QTRY_COMPARE(done.size(), 1);
        const qint32 document =
            pages ? 2 : run.session().items().children(Level::Document, 2).value(0).id;
        QCOMPARE(run.session().pages().pages(document).size(), 1);
        // The document that took them is on show with its page.
        QCOMPARE(run.window()->pageList()->documentId(), document);
        QCOMPARE(run.pages()->count(), 1);
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }

    // Every captioned entry of the assembled window's menus runs a command, and each can be chosen
    // in some state of the window: a walk over the levels, their pop-ups and a clipboard holding a
    // copied file sees each one enabled at least once. Alt and its letter open each menu of the bar
    // on the way.
    void everyMenuEntryRunsACommandSomewhere()
    {
        test::AppRun run;
        test::FixtureStore(run.home.home()).fillSample();
        QVERIFY(run.start());
        NavWindow* w = run.window();
        // A picture copied in a file manager, so that Paste has something to take.
        QApplication::clipboard()->setMimeData(pictureFile(run.home.file("copied.png")));
        QVERIFY(QApplication::clipboard()->mimeData()->hasUrls());
        const auto emptied = qScopeGuard([] { QApplication::clipboard()->clear(); });

        QSet<QString> enabled;
        QStringList faults;
        auto note = [&](QMenu* menu) {
            for (QAction* a : menu->actions())
                if (!a->isSeparator() && a->isVisible() && a->isEnabled())
                    enabled.insert(a->objectName());
        };
        // The menus of the bar, each opened by Alt and its access key, and the pop-up menu of
        // `control`.
        auto look = [&](QWidget* control) {
            for (QAction* top : w->menuBar()->actions()) {
                if (!top->isVisible() || !top->menu())
                    continue;
                const QKeySequence keys = QKeySequence::mnemonic(top->text());
                // The offscreen platform leaves no window active after a pop-up; a desktop does.
                QApplication::setActiveWindow(w);
                QString opened;
                if (keys.isEmpty() || !QTest::qWaitForWindowActive(w) ||
                    !withPopup([&] { QTest::keyClick(w, keys[0].key(), Qt::AltModifier); },
                               [&](QMenu* menu) {
                                   opened = menu->objectName();
                                   note(menu);
                               }) ||
                    opened != top->objectName())
                    faults << QString("at %1, Alt+%2 opened \"%3\", not %4")
                                  .arg(run.tree()->selectedKey(), keys.toString(), opened,
                                       top->objectName());
            }
            if (control) {
                control->setFocus();
                (void)withPopup([&] { QTest::keyClick(control, Qt::Key_Menu); }, note);
            }
        };
        for (const char* node : {"ROOT", "CAB1", "DRW1", "FLD1", "DOC1"}) {
            run.click({node});
            look(run.tree());
            if (ContainerList* list = w->list(); list->isVisible() && list->count() > 0) {
                list->setCurrentRow(0);
                look(list);
            }
        }
        // The pages of the document, none and then one selected.
        look(run.pageView());
        run.pages()->selectPage(1);
        look(run.pageView());
        // The branch of what Find found, and a document in it.
        test::whenModal(this, [&](QWidget* find) {
            find->findChild<QLineEdit*>("txtKeywords")->setText("statement");
            find->findChild<QPushButton*>("cmdFind")->click();
        });
        w->menus().run("mnuFileFind");
        QTRY_VERIFY(run.tree()->node("ROOTFOUND"));
        run.click({"ROOTFOUND"});
        look(run.tree());
        // Every menu the window has, those of the levels not now in the bar too.
        for (QMenu* menu : w->menuBar()->findChildren<QMenu*>()) {
            for (QAction* a : menu->actions()) {
                if (a->isSeparator() || a->text().isEmpty() || a->menu())
                    continue; // a submenu's entries are walked as a menu of their own
                const QString name = a->objectName();
                if (!w->menus().hasCommand(name))
                    faults << name + " runs no command";
                else if (!enabled.contains(name))
                    faults << name + " is never enabled";
            }
        }
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join('\n')));
    }

    // Every window of the assembled program and what it opens: access keys are unique among what
    // shows at once, each dialog opens with the focus in its first field, every control is named
    // for a screen reader, each window shows the program's icon, buttons carry icons beside their
    // captions, and no hidden window is reported to a screen reader.
    void windowsAreWorkedByKeysAndReadAloud()
    {
        const QList<QObject*> before = reportedWindows();
        test::AppRun run;
        qint32 spare = 0;
        {
            test::FixtureStore store(run.home.home());
            store.fillSample();
            spare = store.document(1, QStringLiteral("Spare"));
            store.page(spare, 1, QSize(60, 80));
        }
        // Mail is set up, so that the page viewer's Email shows its dialog.
        run.home.settings().set(keys::EmailSystem, "CDONTS");
        QVERIFY(run.start());
        NavWindow* w = run.window();
        QStringList faults = hiddenReported(before, "after start");
        faults << iconFault(run.startup->progress(), "progress")
               << iconFault(run.startup->splash(), "splash");
        auto dialog = [&](const QString& command, int checks = Both) {
            faults << modalFaults(
                command, [&] { w->menus().run(command); }, checks);
        };
        run.choosers.queueDirectory(run.home.path()); // for Import Files
        // Each level's dialogs: looked at whole, and for their keys alone.
        const std::tuple<const char*, QStringList, QStringList> levels[] = {
            {"ROOT", {"mnuPopupRootNewFileCabinet"}, {}},
            {"CAB1", {"mnuPopupCabinetProperties"}, {"mnuPopupCabinetNewDrawer"}},
            {"DRW1", {"mnuPopupDrawerProperties"}, {"mnuPopupDrawerNewFolder"}},
            {"FLD1",
             {"mnuPopupFolderProperties", "mnuPopupFolderImportFiles"},
             {"mnuPopupFolderNewDocument"}},
            {"DOC1", {"mnuPopupDocumentProperties", "mnuPopupDocumentPrint"}, {}}};
        for (const auto& [node, whole, keysOnly] : levels) {
            run.click({node});
            QCOMPARE(run.tree()->selectedKey(), QString(node));
            faults << windowFaults(w, QString("main window at ") + node);
            for (const QString& command : whole)
                dialog(command);
            for (const QString& command : keysOnly)
                dialog(command, Keys);
        }
        QCOMPARE(captionsOf(w, faults),
                 QStringList({"cmdFind Find", "cmdFirst |<", "cmdLast >|", "cmdNext >", "cmdPrev <",
                              "cmdScanDoc &Scan Page", "cmdScanPic Scan &Picture",
                              "cmdShowLess Show Less", "cmdShowMore Show More"}));
        // The page pane in both its views.
        for (const char* view : {"imgList", "imgThumbnail"}) {
            w->findChild<QToolButton*>(view)->click();
            faults << unnamedIn(w, QString("main window after ") + view);
        }
        run.pages()->selectPage(1);
        for (const char* command :
             {"mnuPopupPageProperties", "mnuPopupPageRenumber", "mnuFileFind", "mnuScanSettings",
              "mnuPrintSettings", "mnuEmailSettings", "mnuViewSettings", "mnuTextSettings",
              "mnuToolsImportFiles", "mnuToolsExportCabinet", "mnuToolsDrawerTemplates",
              "mnuToolsCreateSampleCabinet", "mnuHelpAbout"})
            dialog(command);
        dialog("mnuPopupPagePrint", Keys);
        dialog("mnuHelpHelpTopics", Names);

        // The page viewer and what it opens.
        w->menus().run("mnuPopupPageOpen");
        QWidget* viewer = nullptr;
        QTRY_VERIFY(viewer = w->findChild<QWidget*>("frmPageView"));
        QVERIFY(QTest::qWaitForWindowExposed(viewer));
        faults << windowFaults(viewer, "page viewer");
        QCOMPARE(captionsOf(viewer, faults),
                 QStringList({"cmdAutoTrim Auto &Trim", "cmdCancel Cancel", "cmdCrop &Crop",
                              "cmdEmail E&mail", "cmdInfo &Info", "cmdNext &Next",
                              "cmdPrev &Previous", "cmdPrint Print", "cmdRotateClockwise &Rotate",
                              "cmdRotateCounterClockwise Rotate &Left", "cmdSave &Save",
                              "cmdSaveAs Save &As...", "cmdSearchablePdf Searchable P&DF...",
                              "cmdZoomFitHeight Fit Height", "cmdZoomFitWidth Fit Width",
                              "cmdZoomIn Zoom In", "cmdZoomOut Zoom Out"}));
        for (const char* button : {"cmdInfo", "cmdEmail"})
            faults << modalFaults(
                button, [&] { viewer->findChild<QPushButton*>(button)->click(); }, Keys);
        viewer->close();

        // The password dialog that the desktop's choosers bring up.
        {
            PasswordDialog password(w);
            faults << modalFaults(
                "password", [&] { password.exec(); }, Keys);
        }

        // A command that shows the progress window, which is idle again once it is done.
        run.click({"FLD1", QString("DOC%1").arg(spare)});
        run.prompter.expect("Delete 'Spare'?", Prompter::Answer::Yes);
        w->menus().run("mnuPopupDocumentDelete");
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
        // What is hidden goes once the events under way are through.
        const QString after = "after the dialogs, the viewer and a deletion";
        (void)QTest::qWaitFor([&] { return hiddenReported(before, after).isEmpty(); });
        faults << hiddenReported(before, after);
        faults.removeAll(QString());
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join('\n')));
    }

    // Restored at a drawer: dropping the drawer on its own cabinet changes nothing; month,
    // day and year are typed into Find's date boxes, entered by Tab as a person does.
    void drawerDroppedOnItsCabinetAndFindDatesTyped()
    {
        test::AppRun run;
        test::FixtureStore(run.home.home()).fillSample();
        run.home.settings().set(keys::LastNavTreeNodeKey, "DRW1");
        QVERIFY(run.start());
        QTreeWidgetItem* drawer = run.tree()->node("DRW1");
        QVERIFY(drawer && drawer->isExpanded());
        const auto listed = [&] {
            QStringList texts;
            for (int i = 0; i < run.window()->list()->count(); ++i)
                texts << run.window()->list()->item(i)->text();
            return texts;
        };
        const QStringList before = listed();

        NavDragDrop& drags = run.window()->dragDrop();
        QVERIFY(drags.beginDrag(DropSource::Tree));
        std::unique_ptr<QMimeData> data(drags.dragData());
        QSignalSpy done(&drags, &NavDragDrop::dropDone);
        QVERIFY(dropOn(run.tree()->viewport(), run.nodePoint("CAB1"), data.get()));
        QTRY_COMPARE(done.size(), 1);
        // The same node, open as it was with its folders, and the list as it was.
        QCOMPARE(run.tree()->node("DRW1"), drawer);
        QVERIFY(drawer->isExpanded());
        QCOMPARE(drawer->childCount(), 2);
        QCOMPARE(listed(), before);
        QCOMPARE(run.session().items().parentOf(Level::Drawer, 1), 1);

        QDate typed;
        test::whenModal(this, [&](QWidget* find) {
            find->findChild<QTabWidget*>("tabFind")->setCurrentIndex(2);
            auto* from = find->findChild<QDateEdit*>("dtScanFrom");
            from->setFocus(Qt::TabFocusReason);
            if (QTest::qWaitFor([&] { return from->hasFocus(); }, 2000))
                QTest::keyClicks(from, "03152021");
            typed = from->date();
            qobject_cast<QDialog*>(find)->reject();
        });
        QTest::keyClick(run.window(), Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(typed, QDate(2021, 3, 15));

        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }
};

QMR_TEST(TestMainWindow)
#include "testmainwindow.moc"
