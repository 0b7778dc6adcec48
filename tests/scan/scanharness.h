#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QImageReader>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>

#include "core/progress.h"
#include "core/settings.h"
#include "sanetestbackend.h"
#include "scan/sanesource.h"
#include "scan/scanflow.h"
#include "tests/support/commandharness.h"
#include "tests/support/fixturestore.h"
#include "viewer/pageviewwindow.h"

namespace qmr::test {

inline const QString kPicture = QStringLiteral("test-picture \"Color pattern\"");

// Cabinet "Home", drawer "Papers", folder "Letters" (empty) and folder "Kept" holding
// document "Five" with pages numbered 1 to 5 (real small JPEGs).
struct ScanFixture
{
    qint32 cabinet = -1, drawer = -1, letters = -1, kept = -1, five = -1;

    explicit ScanFixture(const AppHome& home)
    {
        FixtureStore store(home);
        cabinet = store.cabinet("Home");
        drawer = store.drawer(cabinet, "Papers");
        letters = store.folder(drawer, "Letters");
        kept = store.folder(drawer, "Kept");
        five = store.document(kept, "Five");
        for (int n = 1; n <= 5; ++n)
            store.page(five, n, QSize(60, 80));
    }
};

// A progress whose Cancel can be pressed from the test: once pressed it stays stopped until
// the work starts again, as the program's progress window does.
class PressableProgress : public Progress
{
public:
    void start(const QString& title, int, int) override
    {
        m_stopped = false;
        titles << title;
    }
    void step(const QString&) override {}
    void end() override { m_stopped = true; }
    void showCancel() override { cancelOffered = true; }
    bool stopped() const override { return m_stopped; }
    void pressCancel() { m_stopped = true; }

    QStringList titles;
    bool cancelOffered = false;

private:
    bool m_stopped = false;
};

// Answers the modal dialogs that come up while a scan runs: `answer` gets each one once and
// closes it (or leaves it for a later look, returning false).
class DialogAnswerer
{
public:
    explicit DialogAnswerer(std::function<bool(QDialog*)> answer) : m_answer(std::move(answer))
    {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog && dialog != m_last && m_answer(dialog)) {
                m_last = dialog;
                seen << dialog->metaObject()->className();
            }
        });
        m_timer.start();
    }
    // Presses the button of that objectName in the dialog.
    static bool press(QDialog* dialog, const char* name)
    {
        auto* button = dialog->findChild<QAbstractButton*>(QLatin1String(name));
        if (button)
            button->click();
        return button;
    }

    QStringList seen;

private:
    std::function<bool(QDialog*)> m_answer;
    QTimer m_timer;
    QPointer<QDialog> m_last; // a later dialog may be born where this one was
};

// The store of ScanFixture, the SANE test backend with `conf`, a source and a scan flow on
// them. Pages are saved at once; unless told otherwise the scan settings were seen and the
// scanner is the test device.
struct ScanHarness : CommandHarness<ScriptedPrompter, PressableProgress>, ScanFixture
{
    SaneTestBackend backend;
    std::unique_ptr<SaneSource> source;
    std::unique_ptr<ScanFlow> flow;

    explicit ScanHarness(const QStringList& conf = {kPicture}, bool settingsSeen = true)
        : ScanFixture(home.home()), backend(conf)
    {
        openSession();
        view->read();
        settings().setMode(keys::AfterScan, AfterScanMode::Return);
        if (settingsSeen) {
            settings().set(keys::SetupScanSettings, QStringLiteral("True"));
            settings().set(keys::ScanSource, QStringLiteral("test:0"));
        }
        source = std::make_unique<SaneSource>();
        flow = std::make_unique<ScanFlow>(context(), *source);
    }
    // A viewer left open (a test that failed before closing it) has no parent here: it goes
    // with its store, not after it, where its timers would reach the next test.
    ~ScanHarness() { delete flow->viewer(); }

    Settings& settings() { return home.settings(); }
    // Scans into the node; true when the texts expected came, in order, and no other.
    bool scan(const NodeKey& node)
    {
        flow->scanToViewer(node);
        return prompter.verify();
    }
    NodeKey target(bool intoFolder) const
    {
        return intoFolder ? NodeKey::of(Level::Folder, letters)
                          : NodeKey::of(Level::Document, five);
    }
    QVector<PageRow> pages(qint32 documentId) const { return session->pages().pages(documentId); }
    QVector<qint32> documentsOf(qint32 folderId) const
    {
        QVector<qint32> ids;
        for (const auto& child : session->items().children(Level::Document, folderId))
            ids << child.id;
        return ids;
    }
    QString pagePath(const PageRow& row) const
    {
        return session->paths().pagePath(row.id, row.filename);
    }
    // The page's file as a JPEG reader sees it; null when it is missing or no JPEG.
    QImage pageImage(const PageRow& row) const
    {
        QImageReader reader(pagePath(row));
        return reader.format() == "jpeg" ? reader.read() : QImage();
    }
    // The file of the first page of the document that is missing or no JPEG; "" when all are
    // whole.
    QString brokenPage(qint32 documentId) const
    {
        for (const PageRow& row : pages(documentId))
            if (pageImage(row).isNull())
                return pagePath(row);
        return QString();
    }
};

} // namespace qmr::test
