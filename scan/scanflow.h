#pragma once

#include <QImage>
#include <QObject>
#include <QPointer>
#include <deque>
#include <functional>
#include <optional>

#include "core/nodekey.h"
#include "scan/scansource.h"
#include "store/commandcontext.h"

namespace qmr {

class PageViewWindow;
class QuietProgress;

// ScanToViewer: one scan into a folder, a document or beside a page. In this order: the
// settings are seen once, a device is set, the viewer makes the rows of the new page in mode
// "Add" (and the folder hears of it), the document's details are asked before the scan when
// the settings say so, and the device reads. Each sheet becomes a page: saved at once
// ("RETURN") or left in the viewer for editing ("IMAGEEDIT"). With the feeder every sheet
// is read until it is empty; where a page waits for the person (editing, or a name to give)
// the next sheet waits with it. The window keeps answering; Cancel stops the device and
// keeps the pages taken.
class ScanFlow : public QObject
{
    Q_OBJECT
public:
    ScanFlow(const CommandContext& context, ScanSource& source);
    // The context is held by reference: a temporary one would be gone before its use.
    ScanFlow(CommandContext&& context, ScanSource& source) = delete;
    ~ScanFlow() override;

    void scanToViewer(const NodeKey& key);
    // Stops the device; the pages already taken are kept.
    void cancel();

    bool isRunning() const { return m_running; }
    int pagesTaken() const { return m_taken; }
    int pagesSaved() const { return m_saved; }
    // The viewer left open with its page for editing, if any.
    PageViewWindow* viewer() const;

signals:
    // A page of this scan reached the store with its image.
    void pageSaved(qint32 pageId);
    // The device is being read (for a progress of one's own).
    void sheetProgress(int sheet, int percent);

private:
    enum class Ending { Done, Cancelled, Failed };

    bool prepareViewer(const NodeKey& key);
    bool askDetailsBeforeScan();
    void askDetailsAfterScan();
    // Opens the device, shows its options where asked, and reads sheet after sheet.
    void acquire();
    // One sheet's image; false ends the scan.
    bool handlePage(const QImage& image);
    // The viewer shows the page and the scan waits until it is saved (true) or the viewer
    // is closed (false).
    bool waitForPerson();
    void finishViewer();
    void waitUntil(const std::function<bool()>& done);
    void showSheet(int sheet, int percent);
    void endProgress();
    QString deviceWord() const;
    void tellFailure(const ScanEnd& end);

    const CommandContext& m_context;
    ScanSource& m_source;
    QPointer<PageViewWindow> m_viewer;
    QPointer<QuietProgress> m_quiet;
    NodeKey m_key;
    ScanRequest m_request;
    ScanSetup m_setup;
    QVector<ScanOption> m_options;
    QString m_deviceLabel;
    std::deque<QImage> m_pages;
    std::optional<ScanEnd> m_end;
    bool m_opened = false;
    bool m_running = false;
    bool m_cancelRequested = false;
    bool m_documentShown = false;
    bool m_progressShown = false;
    int m_shownSheet = 0;
    int m_position = 0;
    int m_taken = 0;
    int m_saved = 0;
};

} // namespace qmr
