#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <functional>

#include "app/appicon.h"
#include "app/progresswindow.h"
#include "app/splashwindow.h"
#include "app/startup.h"
#include "help/helplocator.h"
#include "navigator/navwindow.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

QImage pictureOf(const QIcon& icon, int side)
{
    return icon.pixmap(side, side).toImage().convertToFormat(QImage::Format_ARGB32);
}

void noteModal(QObject* context, std::function<void(QWidget*)> act, int tries = 200)
{
    QTimer::singleShot(20, context, [=] {
        if (QWidget* w = QApplication::activeModalWidget()) {
            act(w);
            w->close();
        } else if (tries > 0) {
            noteModal(context, act, tries - 1);
        }
    });
}

} // namespace

// What makes Quillmere a desktop program: its icon on every window, its help text.
class TestDesktop : public QObject
{
    Q_OBJECT
private slots:
    void iconAtEverySize()
    {
        const QIcon icon = AppIcon::icon();
        QVERIFY(!icon.isNull());
        for (const int side : AppIcon::sizes()) {
            const QImage image = pictureOf(icon, side);
            QCOMPARE(image.size(), QSize(side, side));
            // The tile's corner is transparent, its middle drawn.
            QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
            QCOMPARE(qAlpha(image.pixel(side / 2, side / 2)), 255);
        }
    }

    void everyWindowShowsTheIcon()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        Startup run(home.home(), home.settings(), prompter, choosers);
        QVERIFY(run.start());
        const QImage expected = pictureOf(AppIcon::icon(), 32);
        QCOMPARE(pictureOf(run.window()->windowIcon(), 32), expected);
        QCOMPARE(pictureOf(run.progress()->windowIcon(), 32), expected);
        QCOMPARE(pictureOf(run.splash()->windowIcon(), 32), expected);

        QStringList seen;
        for (const char* entry : {"mnuHelpAbout", "mnuPrintSettings", "mnuHelpHelpTopics"}) {
            noteModal(run.window(), [&](QWidget* w) {
                seen << w->objectName();
                QCOMPARE(pictureOf(w->windowIcon(), 32), expected);
            });
            run.window()->menus().action(entry)->trigger();
        }
        QCOMPARE(seen, (QStringList{"frmAbout", "frmPrintSettings", "frmHelp"}));
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        run.window()->close();
    }

    void firstStartWritesTheHelpText()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        {
            Startup run(home.home(), home.settings(), prompter, choosers);
            QVERIFY(run.start(false));
            run.window()->close();
        }
        QFile file(home.file("qmrhelp.txt"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), HelpLocator::shippedText());
        QVERIFY(HelpLocator::shippedText().contains("[toc]"));
    }
};

QMR_TEST(TestDesktop)
#include "testdesktop.moc"
