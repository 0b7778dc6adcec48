#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScopeGuard>
#include <cmath>
#include <map>

#include "app/appicon.h"
#include "core/settingkeys.h"
#include "dialogs/dialogchoosers.h"
#include "help/helpwindow.h"
#include "tests/app/apprun.h"
#include "tests/support/shots.h"

using namespace qmr;

namespace {

// The contrast ratio of two colours as the accessibility guidelines define it (1 to 21).
double contrast(QRgb a, QRgb b)
{
    const auto luminance = [](QRgb c) {
        const auto channel = [](int v) {
            const double s = v / 255.0;
            return s <= 0.03928 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * channel(qRed(c)) + 0.7152 * channel(qGreen(c)) + 0.0722 * channel(qBlue(c));
    };
    const double la = luminance(a), lb = luminance(b);
    return (qMax(la, lb) + 0.05) / (qMin(la, lb) + 0.05);
}

// How well a control's text stands out from its ground, as the window draws them: the ground
// is the commonest colour of the control's rectangle, the text the colour farthest from it.
double drawnContrast(QWidget* window, const char* name)
{
    auto* control = window->findChild<QWidget*>(QLatin1String(name));
    if (!control || control->isHidden())
        return 0;
    const QImage shot = window->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QRect area(control->mapTo(window, QPoint(0, 0)), control->size());
    std::map<QRgb, int> counts;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            ++counts[shot.pixel(x, y)];
    QRgb ground = 0;
    int most = 0;
    for (const auto& [colour, count] : counts)
        if (count > most)
            ground = colour, most = count;
    double best = 1;
    for (const auto& entry : counts)
        best = qMax(best, contrast(ground, entry.first));
    return best;
}

} // namespace

// What makes Quillmere a desktop program: its icon, its help, its choosers.
class TestDesktop : public QObject
{
    Q_OBJECT
private slots:
    void iconAtEverySize()
    {
        const QIcon icon = AppIcon::icon();
        QVERIFY(!icon.isNull());
        for (const int side : AppIcon::sizes()) {
            const QImage image =
                icon.pixmap(side, side).toImage().convertToFormat(QImage::Format_ARGB32);
            QCOMPARE(image.size(), QSize(side, side));
            // The tile's corner is transparent, its middle drawn.
            QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
            QCOMPARE(qAlpha(image.pixel(side / 2, side / 2)), 255);
        }
    }

    // Help reads in a light and a dark theme, and is worked with the keys alone: Tab reaches
    // the list of topics, the arrows move in it, Enter opens the topic.
    void helpInAnyThemeByKeys_data()
    {
        test::columns<bool>({"dark"});
        test::row("light theme", false);
        test::row("dark theme", true);
    }
    void helpInAnyThemeByKeys()
    {
        QFETCH(bool, dark);
        const QPalette before = QApplication::palette();
        const auto restore = qScopeGuard([&] { QApplication::setPalette(before); });
        if (dark)
            QApplication::setPalette(test::darkPalette());
        test::AppRun run;
        QVERIFY(run.start());

        QStringList steps, unreadable;
        test::whenModal(run.window(), [&](QWidget* w) {
            auto* help = qobject_cast<HelpWindow*>(w);
            if (!help)
                return;
            const auto readable = [&](const QStringList& names) {
                for (const QString& name : names)
                    if (const double ratio = drawnContrast(help, qPrintable(name)); ratio < 4.5)
                        unreadable << QStringLiteral("%1 %2").arg(name).arg(ratio, 0, 'f', 2);
            };
            const auto step = [&](const QString& what) {
                steps << what + ":" +
                             (help->focusWidget() ? help->focusWidget()->objectName()
                                                  : QString("none"));
            };
            const auto press = [&](const QList<Qt::Key>& keys, const QString& name) {
                for (Qt::Key key : keys) {
                    QTest::keyClick(help->windowHandle(), key);
                    step(name);
                }
            };
            QTRY_VERIFY(help->isActiveWindow());
            step("open");
            readable({"lblTitle", "lblLine0"});
            press({Qt::Key_Tab, Qt::Key_Tab}, "Tab");
            press({Qt::Key_Down, Qt::Key_Down}, "Down");
            steps << QString("marked %1").arg(help->markedLine());
            readable({"lblLine0", "lblLine1"}); // the second marked
            press({Qt::Key_Return}, "Return");
            steps << QString("topic %1").arg(help->topicNumber());
            readable({"lblTitle", "lblPage"});
            w->close();
        });
        run.window()->menus().action("mnuHelpHelpTopics")->trigger();
        QVERIFY2(unreadable.isEmpty(), qPrintable(unreadable.join(", ")));
        QCOMPARE(steps.join(' '),
                 QString("open:fraContents Tab:cmdClose Tab:fraContents Down:fraContents "
                         "Down:fraContents marked 1 Return:cmdNext topic 2"));
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }

    // Every Browse button asks the folder chooser: it starts at the box's folder, else at the
    // last one chosen; the answer goes into the box and is remembered; Cancel changes nothing.
    // The real chooser is driven (its own widgets, as offscreen and where the desktop has none
    // of its own); the cabinet's Browse against the chooser seam is the item dialog's test.
    void browseButtonsAskTheFolderChooser_data()
    {
        // The folders: "" none, "stale" one that is not there, "home" the user's; each other
        // name a folder of its own, "S" the one chosen last. answer "": Cancel.
        test::columns<QString, QString, QString, QString, QString, QString>(
            {"entry", "box", "answer", "start", "boxAfter", "remembered"});
        const QString cabinet = "mnuPopupRootNewFileCabinet", exports = "mnuToolsExportCabinet";
        const auto row = [](const char* name, const QString& entry, const QString& places) {
            const QStringList p = places.split(',');
            QTest::newRow(name) << entry << p[0] << p[1] << p[2] << p[3] << p[4];
        };
        row("cabinet, empty box: the last folder; typed", cabinet, ",A,S,A,A");
        row("export, the box's folder; cancelled", exports, "B,,B,B,S");
        row("export, stale box: at home; typed", exports, "stale,A,home,A,A");
    }
    void browseButtonsAskTheFolderChooser()
    {
        const auto [entry, box, answer, start, boxAfter, remembered] =
            test::fetch<QString, QString, QString, QString, QString, QString>(
                "entry", "box", "answer", "start", "boxAfter", "remembered");
        QTemporaryDir places;
        const auto place = [&](const QString& name) -> QString {
            if (name.isEmpty())
                return {};
            if (name == "stale")
                return places.filePath("gone");
            if (name == "home")
                return QDir::homePath();
            QDir(places.path()).mkdir(name);
            return places.filePath(name);
        };
        // A platform theme from the environment could bring a chooser of its own, which no
        // test can answer.
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, true);
        const auto nativeAgain =
            qScopeGuard([] { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, false); });

        test::AppRun run;
        run.home.settings().set(keys::PathSelect, place("S"));
        DialogChoosers real;
        QVERIFY(run.start(true, &real));
        real.setParent(run.window());

        QString opened, shown = "<no dialog>";
        const bool cabinet = entry == "mnuPopupRootNewFileCabinet";
        test::whenModal(run.window(), [&](QWidget* dialog) {
            if (cabinet)
                dialog->findChild<QRadioButton*>("optStorage1")->click();
            auto* text = dialog->findChild<QLineEdit*>(cabinet ? "txtSaveTo" : "txtOutputPath");
            text->setText(place(box));
            test::whenModal(dialog, [&](QWidget* w) {
                auto* chooser = qobject_cast<QFileDialog*>(w);
                if (!chooser)
                    return;
                opened = QString("%1|%2|%3")
                             .arg(chooser->windowTitle(), chooser->directory().path())
                             .arg(chooser->fileMode() == QFileDialog::Directory);
                auto* typed = chooser->findChild<QLineEdit*>("fileNameEdit");
                if (answer.isEmpty() || !typed) {
                    QTest::keyClick(chooser, Qt::Key_Escape);
                    return;
                }
                // The path in one piece: typed a key at a time, the chooser's completer (fed by
                // a model that reads folders in the background) may take the text over on a
                // loaded machine.
                typed->setText(place(answer));
                QTest::keyClick(typed, Qt::Key_Return);
            });
            dialog->findChild<QPushButton*>(cabinet ? "cmdBrowse" : "cmdLookup")->click();
            shown = text->text();
            dialog->findChild<QPushButton*>("cmdCancel")->click();
        });
        run.window()->menus().action(entry)->trigger();

        QCOMPARE(opened, "Select Path|" + place(start) + "|1");
        QCOMPARE(shown, place(boxAfter));
        QCOMPARE(run.home.settings().get(keys::PathSelect), place(remembered));
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }
};

QMR_TEST(TestDesktop)
#include "testdesktop.moc"
