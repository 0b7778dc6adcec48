#pragma once

#include <QHash>
#include <QMutex>
#include <QObject>
#include <atomic>
#include <memory>

#include "scan/sanelibrary.h"
#include "scan/scansource.h"

namespace qmr {

class FrameAssembler;

// The SANE side of scanning. It lives on a thread of its own and makes every call into the
// library there, one at a time; only requestCancel() is called from outside, and it stops a
// running read at once (the library allows its cancel from anywhere).
class SaneWorker : public QObject
{
    Q_OBJECT
public:
    explicit SaneWorker(std::shared_ptr<SaneLibrary> library);
    ~SaneWorker() override;

    // Any thread: stops the read in progress; the scan then ends with Cancelled.
    void requestCancel();
    // Any thread: every call still queued returns at once; shutdown() follows.
    void requestStop();

public slots:
    void findDevices();
    void open(const qmr::ScanRequest& request);
    void setOption(const QString& name, const QVariant& value);
    void readPages();
    void nextPage();
    void close();
    // Closes the device and lets go of the library.
    void shutdown();

signals:
    void devicesFound(const QVector<qmr::ScanDevice>& devices, const QString& failure);
    void opened(const QVector<qmr::ScanOption>& options, const qmr::ScanSetup& setup);
    void optionsChanged(const QVector<qmr::ScanOption>& options, const QString& failure);
    void sheetProgress(int sheet, int percent);
    void pageAcquired(const QImage& image, int sheet);
    void finished(const qmr::ScanEnd& end);

private:
    bool ensureLibrary(QString* failure);
    QVector<ScanOption> readOptions();
    int indexOf(const QString& name) const;
    // SANE's status text for a failed setting, or "".
    QString setValue(int index, const QVariant& value);
    void applyRequest();
    void readSheet();
    // Ends the scan: the device is stopped and closed before the answer goes out.
    void finish(ScanEnd::Reason reason, const QString& status = QString(), bool atOpen = false);
    void closeHandle();
    double currentResolution() const;
    // The device's vendor and model with its name, as the last search found them.
    QString deviceLabel() const;
    QImage inWantedColour(QImage image) const;

    const std::shared_ptr<SaneLibrary> m_library;
    SANE_Handle m_handle = nullptr; // changed only under m_handleLock
    QMutex m_handleLock;
    std::atomic<bool> m_cancelled{false};
    std::atomic<bool> m_stopping{false};
    std::atomic<bool> m_reading{false};
    bool m_initialised = false;         // init() succeeded and exit() is owed
    QHash<QString, int> m_index;        // option name -> SANE option number
    QHash<QString, ScanDevice> m_known; // the devices of the last search, by name
    ScanRequest m_request;
    ScanSetup m_setup;
    int m_sheet = 0;
};

} // namespace qmr
