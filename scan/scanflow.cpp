#include "scan/scanflow.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include "core/navigatorcallbacks.h"
#include "core/progress.h"
#include "core/prompter.h"
#include "dialogs/itemdialog.h"
#include "scan/quietprogress.h"
#include "scan/scanoptionsdialog.h"
#include "scan/scansettings.h"
#include "scan/scansettingsdialog.h"
#include "store/commandguard.h"
#include "store/itemrules.h"
#include "store/session.h"
#include "viewer/pageviewwindow.h"

namespace qmr {

namespace {

bool isFolder(const NodeKey& key)
{
    return key.prefix() == QLatin1String("FLD");
}

} // namespace

ScanFlow::ScanFlow(const CommandContext& context, ScanSource& source)
    : m_context(context), m_source(source)
{
    connect(&m_source, &ScanSource::opened, this,
            [this](const QVector<ScanOption>& options, const ScanSetup& setup) {
                m_opened = true;
                m_options = options;
                m_setup = setup;
                m_deviceLabel = setup.device;
            });
    connect(&m_source, &ScanSource::sheetProgress, this, &ScanFlow::showSheet);
    connect(&m_source, &ScanSource::pageAcquired, this,
            [this](const QImage& image, int) { m_pages.push_back(image); });
    connect(&m_source, &ScanSource::finished, this, [this](const ScanEnd& end) {
        m_end = end;
        if (!end.device.isEmpty())
            m_deviceLabel = end.device;
    });
}

ScanFlow::~ScanFlow() = default;

PageViewWindow* ScanFlow::viewer() const
{
    return m_viewer;
}

void ScanFlow::cancel()
{
    m_cancelRequested = true;
    m_source.cancel();
}

QString ScanFlow::deviceWord() const
{
    return ScanSettings(m_context.session.settings()).isCamera() ? tr("camera") : tr("scanner");
}

// ---- ScanToViewer -------------------------------------------------------------------------

void ScanFlow::scanToViewer(const NodeKey& key)
{
    if (m_running)
        return;
    Settings& settings = m_context.session.settings();
    if (settings.get(keys::SetupScanSettings) != QLatin1String("True")) {
        ScanSettingsDialog dialog(settings, m_source, m_context.parent);
        dialog.exec();
        if (settings.get(keys::SetupScanSettings) != QLatin1String("True"))
            return;
    }
    const ScanSettings scan(settings);
    if (scan.source().isEmpty()) {
        m_context.prompter.tell(scan.isCamera()
                                    ? QStringLiteral("A camera could not be detected.")
                                    : QStringLiteral("A scanner could not be detected."));
        return;
    }

    m_running = true;
    m_key = key;
    m_request = scan.request();
    m_deviceLabel = m_request.device;
    m_pages.clear();
    m_end.reset();
    m_opened = false;
    m_cancelRequested = false;
    m_documentShown = false;
    m_taken = 0;
    m_saved = 0;
    if (prepareViewer(key)) {
        if (!isFolder(key) || settings.mode(keys::GetDocInfo) != DocInfoTime::BeforeScan ||
            askDetailsBeforeScan())
            acquire();
    }
    endProgress();
    finishViewer();
    m_running = false;
}

bool ScanFlow::prepareViewer(const NodeKey& key)
{
    // The viewer's saves stay quiet while the scan's own progress is up.
    auto* quiet = new QuietProgress(m_context.progress);
    CommandContext viewerContext{m_context.session,
                                 m_context.state,
                                 m_context.prompter,
                                 m_context.choosers,
                                 *quiet,
                                 m_context.view,
                                 m_context.target,
                                 m_context.navigator,
                                 m_context.parent,
                                 m_context.pageOpener};
    auto* viewer = new PageViewWindow(viewerContext, m_context.parent);
    quiet->setParent(viewer);
    viewer->setWindowFlag(Qt::Window);
    m_viewer = viewer;
    m_quiet = quiet;
    connect(viewer, &PageViewWindow::pageSaved, this, &ScanFlow::pageSaved);
    // The rows of the new page (and the folder's notice) come before any image.
    return viewer->beginAdd(key);
}

bool ScanFlow::askDetailsBeforeScan()
{
    bool written = false;
    guarded(m_context.prompter, [&] {
        ItemDialog dialog(Level::Document, m_context, m_context.parent, true);
        if (dialog.exec() != QDialog::Accepted || dialog.newDocument().cancelled)
            return;
        const NewDocumentResult& answers = dialog.newDocument();
        const qint32 documentId = m_viewer->location().documentId;
        ItemFields fields;
        fields.name = answers.name;
        fields.description = answers.description;
        fields.dateOnDocument = ItemRules::dateOrZero(answers.dateOnDocument);
        fields.amount = answers.amount.toDouble();
        fields.hasAmount = true;
        m_context.session.items().updateItem(Level::Document, documentId, fields);
        if (m_context.navigator)
            m_context.navigator->itemRenamed(Level::Document, documentId, fields.name,
                                             fields.dateOnDocument);
        written = true;
    });
    return written;
}

void ScanFlow::askDetailsAfterScan()
{
    endProgress();
    guarded(m_context.prompter, [&] {
        const PageLocation& location = m_viewer->location();
        ItemDialog dialog(Level::Document, m_context, m_context.parent);
        if (dialog.setEdit(location.documentId))
            dialog.exec();
        // The document made for this scan is shown once it has its details.
        if (m_context.navigator && !m_documentShown) {
            const std::optional<ItemFields> fields =
                m_context.session.items().fields(Level::Document, location.documentId);
            if (fields)
                m_context.navigator->itemAdded(CreatedItem{Level::Document, location.folderId,
                                                           location.documentId, fields->name,
                                                           fields->dateOnDocument});
            m_documentShown = true;
        }
    });
}

// ---- the device ---------------------------------------------------------------------------

void ScanFlow::waitUntil(const std::function<bool()>& done)
{
    if (done())
        return;
    QEventLoop loop;
    QTimer check;
    check.setInterval(20);
    connect(&check, &QTimer::timeout, &loop, [&] {
        // The progress window's Cancel stops the device.
        if (m_progressShown && !m_cancelRequested && m_context.progress.stopped())
            cancel();
        if (done())
            loop.quit();
    });
    // Every answer of the device is a chance to be done.
    const auto again = [&] {
        if (done())
            loop.quit();
    };
    const QMetaObject::Connection c1 =
        connect(&m_source, &ScanSource::opened, &loop, again, Qt::QueuedConnection);
    const QMetaObject::Connection c2 =
        connect(&m_source, &ScanSource::pageAcquired, &loop, again, Qt::QueuedConnection);
    const QMetaObject::Connection c3 =
        connect(&m_source, &ScanSource::finished, &loop, again, Qt::QueuedConnection);
    check.start();
    loop.exec();
    disconnect(c1);
    disconnect(c2);
    disconnect(c3);
}

void ScanFlow::showSheet(int sheet, int percent)
{
    emit sheetProgress(sheet, percent);
    Progress& progress = m_context.progress;
    // A Cancel pressed just before the next sheet began must not be lost to the restart of
    // the progress window.
    if (m_progressShown && !m_cancelRequested && progress.stopped())
        cancel();
    if (m_cancelRequested)
        return;
    if (!m_progressShown || sheet != m_shownSheet) {
        progress.start(tr("Reading page %1 from %2").arg(sheet).arg(m_deviceLabel), 0, 100);
        progress.showCancel();
        m_progressShown = true;
        m_shownSheet = sheet;
        m_position = 0;
    }
    while (m_position < percent) {
        ++m_position;
        progress.step(tr("Reading page %1 from %2").arg(sheet).arg(m_deviceLabel));
    }
}

void ScanFlow::endProgress()
{
    if (!m_progressShown)
        return;
    m_progressShown = false;
    m_context.progress.end();
}

void ScanFlow::tellFailure(const ScanEnd& end)
{
    const QString device = QLatin1Char('\'') + m_deviceLabel + QLatin1Char('\'');
    QString text;
    if (end.atOpen)
        text = tr("The %1 %2 could not be used: %3.").arg(deviceWord(), device, end.status);
    else
        text = tr("The %1 %2 stopped: %3.").arg(deviceWord(), device, end.status);
    if (m_saved > 0)
        text += m_saved == 1 ? tr("\nThe page scanned before is kept.")
                             : tr("\nThe %1 pages scanned before are kept.").arg(m_saved);
    m_context.prompter.tell(text);
}

void ScanFlow::acquire()
{
    m_source.open(m_request);
    waitUntil([this] { return m_opened || m_end.has_value(); });
    if (!m_opened) {
        if (m_end && m_end->reason == ScanEnd::Reason::Failed)
            tellFailure(*m_end);
        return;
    }

    if (m_context.session.settings().flag(keys::ScanShowUi)) {
        ScanOptionsDialog dialog(m_deviceLabel, m_source, m_context.parent);
        dialog.setOptions(m_options);
        if (dialog.exec() != QDialog::Accepted) {
            m_source.close();
            waitUntil([this] { return m_end.has_value(); });
            return;
        }
    }

    m_source.readPages();
    for (;;) {
        waitUntil([this] { return !m_pages.empty() || m_end.has_value(); });
        if (!m_pages.empty()) {
            const QImage image = m_pages.front();
            m_pages.pop_front();
            if (!handlePage(image)) {
                // The device stops at the sheet it holds; nothing more is read.
                m_cancelRequested = true;
                m_source.cancel();
            }
            m_source.nextPage();
            continue;
        }
        break;
    }
    endProgress();
    if (!m_end) {
        // The program is ending (its event loops were told to stop): the device stops too.
        m_source.cancel();
        return;
    }
    if (m_end->reason == ScanEnd::Reason::Failed)
        tellFailure(*m_end);
}

// ---- each page ----------------------------------------------------------------------------

bool ScanFlow::handlePage(const QImage& image)
{
    if (!m_viewer)
        return false;
    if (m_taken > 0) {
        // The next sheet is a page of its own, in the same document.
        m_viewer->startNextPage();
        bool resolved = false;
        guarded(m_context.prompter, [&] { resolved = m_viewer->preResolveDbId(); });
        if (!resolved)
            return false;
    }
    ++m_taken;
    Settings& settings = m_context.session.settings();
    if (isFolder(m_key) && m_taken == 1 &&
        settings.mode(keys::GetDocInfo) != DocInfoTime::BeforeScan)
        askDetailsAfterScan();
    if (!m_viewer)
        return false;
    // A sheet that brought no image leaves the new page empty, never with the last one's.
    m_viewer->setAcquiredImage(image);
    if (image.isNull())
        return false;

    if (settings.mode(keys::AfterScan) == AfterScanMode::Return) {
        if (m_quiet)
            m_quiet->setQuiet(true);
        const PageSaver::Result result = m_viewer->save();
        if (m_quiet)
            m_quiet->setQuiet(false);
        // Let the window draw what the save changed before the next sheet.
        QCoreApplication::processEvents();
        if (result == PageSaver::Result::Saved) {
            ++m_saved;
            return true;
        }
        // The page could not be saved as it stands (a name is wanted, the disk is full):
        // it waits in the viewer for the person, and so does the feeder.
        return waitForPerson();
    }
    // "IMAGEEDIT": a single page stays in the viewer when the scan ends; a stack from the
    // feeder is shown page by page, each waiting for its save.
    if (!m_setup.feeder)
        return true;
    return waitForPerson();
}

bool ScanFlow::waitForPerson()
{
    endProgress();
    QPointer<PageViewWindow> viewer = m_viewer;
    if (!viewer->isVisible()) {
        // The rest of the program waits with the feeder.
        viewer->setWindowModality(Qt::ApplicationModal);
        viewer->showAndLoad();
    }
    bool saved = false;
    const QMetaObject::Connection c =
        connect(viewer, &PageViewWindow::pageSaved, this, [&saved] { saved = true; });
    waitUntil([&] { return saved || !viewer || !viewer->isVisible(); });
    disconnect(c);
    if (saved)
        ++m_saved;
    return saved && viewer && viewer->isVisible();
}

void ScanFlow::finishViewer()
{
    PageViewWindow* viewer = m_viewer;
    if (!viewer)
        return;
    const bool saved = viewer->newPageSaved();
    const bool hasImage = !viewer->pageImage().isNull();
    const bool editing =
        m_context.session.settings().mode(keys::AfterScan) != AfterScanMode::Return;
    // One page taken for editing stays; so does any page that has an image and no file yet,
    // so that nothing scanned is lost.
    if (hasImage && ((editing && m_taken == 1) || !saved)) {
        if (viewer->windowModality() != Qt::NonModal) {
            viewer->hide();
            viewer->setWindowModality(Qt::NonModal);
        }
        if (!viewer->isVisible())
            viewer->showAndLoad();
        return;
    }
    m_viewer = nullptr;
    if (!saved)
        viewer->discardNewPage(); // no image came for it
    else
        viewer->close();
}

} // namespace qmr
