#pragma once

#include <QHash>
#include <QObject>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "core/attempt.h"
#include "scan/sanelibrary.h"
#include "scan/scansource.h"

namespace qmr {

class FrameAssembler;

// The SANE side of scanning. It runs on a thread of its own (run()) and makes every call into
// the library there, one job at a time; the window only hands it jobs and flags, and so never
// waits on the device. It belongs to no Qt thread: its answers are queued to their receivers,
// and the thread that runs it deletes it when it ends.
class SaneWorker : public QObject
{
    Q_OBJECT
public:
    explicit SaneWorker(std::shared_ptr<SaneLibrary> library);
    ~SaneWorker() override;

    // The thread's work: the jobs in the order given, until stop; then the library is let go.
    void run();

    // Any thread: queues a job (dropped once stopping).
    void post(std::function<void()> job);
    // Any thread: stops the read in progress; the scan then ends with Cancelled.
    void requestCancel();
    // Any thread: the jobs still queued are dropped and run() ends after the one under way.
    // The last call to make: the worker may be gone as soon as it returns.
    void requestStop();

    void findDevices();
    void open(const qmr::ScanRequest& request);
    void setOption(const QString& name, const QVariant& value);
    void readPages();
    void nextPage();
    void close();

signals:
    void devicesFound(const QVector<qmr::ScanDevice>& devices, const QString& failure);
    void opened(const QVector<qmr::ScanOption>& options, const qmr::ScanSetup& setup);
    void optionsChanged(const QVector<qmr::ScanOption>& options, const QString& failure);
    void sheetProgress(int sheet, int percent);
    void pageAcquired(const QImage& image, int sheet);
    void finished(const qmr::ScanEnd& end);

private:
    // The open device as a cancel from another thread sees it. That thread counts itself in
    // `cancelling` before it looks at the handle, and the handle is closed only once it has
    // counted itself out, so it never calls into a closed handle and nobody holds a lock
    // across the call. `opening` tells a late cancel from the next scan's.
    struct Device
    {
        std::atomic<SANE_Handle> handle{nullptr};
        std::atomic<unsigned> opening{0};
        std::atomic<bool> reading{false};
        std::atomic<int> cancelling{0};
    };

    SANE_Handle handle() const { return m_device->handle.load(); }
    Attempt<> ensureLibrary();
    // Closes the device and lets go of the library.
    void shutdown();
    QVector<ScanOption> readOptions();
    int indexOf(const QString& name) const;
    // SANE's status text for a failed setting, or "".
    QString setValue(int index, const QVariant& value);
    void applyRequest();
    void readSheet();
    // Ends the scan: the answer goes out, then the device is stopped and closed (which a
    // device may take its time over; the next job waits for it, the window does not).
    void finish(ScanEnd::Reason reason, const QString& status = QString(), bool atOpen = false);
    void closeHandle();
    double currentResolution() const;
    // The device's vendor and model with its name, as the last search found them.
    QString deviceLabel() const;
    QImage inWantedColour(QImage image) const;

    const std::shared_ptr<SaneLibrary> m_library;
    const std::shared_ptr<Device> m_device = std::make_shared<Device>();
    std::mutex m_queueLock; // guards m_jobs only; never held across a call into the library
    std::condition_variable m_queueChanged;
    std::deque<std::function<void()>> m_jobs;
    std::atomic<bool> m_cancelled{false};
    std::atomic<bool> m_cancelSent{false};
    std::atomic<bool> m_stopping{false};
    bool m_initialised = false;         // init() succeeded and exit() is owed
    QHash<QString, int> m_index;        // option name -> SANE option number
    QHash<QString, ScanDevice> m_known; // the devices of the last search, by name
    ScanRequest m_request;
    ScanSetup m_setup;
    int m_sheet = 0;
};

} // namespace qmr
