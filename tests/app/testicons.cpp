#include <QImage>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>

#include "app/startup.h"
#include "core/settings.h"
#include "navigator/navwindow.h"
#include "navigator/pagelistview.h"
#include "navigator/pagepane.h"
#include "tests/support/fixturestore.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// Whatever the theme, the icon draws something: a name whose own picture is missing does not.
bool drawsSomething(const QIcon& icon)
{
    const QImage image = icon.pixmap(16, 16).toImage();
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 0)
                return true;
    return false;
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
        const bool words = b->text().contains(QRegularExpression("[A-Za-z]"));
        if (!words) {
            // A caption of signs is a picture already.
            if (!b->icon().isNull())
                faults << what + " shows an icon beside its signs";
            continue;
        }
        if (b->icon().isNull() || !drawsSomething(b->icon()))
            faults << what + " has no icon";
        const int caption = b->fontMetrics().horizontalAdvance(QString(b->text()).remove('&'));
        if (b->width() < caption + b->iconSize().width() + 8)
            faults << what + QString(" is %1 px wide, too narrow for its icon and caption")
                                 .arg(b->width());
    }
    captions.sort();
    return captions;
}

} // namespace

// The buttons of the window main() assembles and of the page viewer read like a toolbar.
class TestIcons : public QObject
{
    Q_OBJECT
private slots:
    void buttonsCarryIconsBesideTheirCaptions()
    {
        test::TestHome home;
        test::FixtureStore(home.home()).fillSample();
        home.settings().set(keys::LastNavTreeNodeKey, "DOC1");
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        Startup run(home.home(), home.settings(), prompter, choosers);
        QVERIFY(run.start());
        NavWindow* w = run.window();
        QVERIFY(QTest::qWaitForWindowExposed(w));
        QTRY_VERIFY(w->pageList()->isVisible());
        QStringList faults;
        const QStringList main{"cmdFind Find",
                               "cmdFirst |<",
                               "cmdLast >|",
                               "cmdNext >",
                               "cmdPrev <",
                               "cmdScanDoc &Scan Page",
                               "cmdScanPic Scan &Picture",
                               "cmdShowLess Show Less",
                               "cmdShowMore Show More"};
        QCOMPARE(captionsOf(w, faults), main);

        w->pageList()->list()->selectPage(1);
        w->menus().run("mnuPopupPageOpen");
        QWidget* viewer = nullptr;
        QTRY_VERIFY(viewer = w->findChild<QWidget*>("frmPageView"));
        QVERIFY(QTest::qWaitForWindowExposed(viewer));
        const QStringList pageView{"cmdAutoTrim Auto &Trim",
                                   "cmdCancel Cancel",
                                   "cmdCrop &Crop",
                                   "cmdEmail E&mail",
                                   "cmdInfo &Info",
                                   "cmdNext &Next",
                                   "cmdPrev &Previous",
                                   "cmdPrint Print",
                                   "cmdRotateClockwise &Rotate",
                                   "cmdRotateCounterClockwise Rotate &Left",
                                   "cmdSave &Save",
                                   "cmdSaveAs Save &As...",
                                   "cmdZoomFitHeight Fit Height",
                                   "cmdZoomFitWidth Fit Width",
                                   "cmdZoomIn Zoom In",
                                   "cmdZoomOut Zoom Out"};
        QCOMPARE(captionsOf(viewer, faults), pageView);
        viewer->close();
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join('\n')));
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
    }
};

QMR_TEST(TestIcons)
#include "testicons.moc"
