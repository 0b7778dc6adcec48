#pragma once

#include <future>
#include <memory>
#include <thread>

#include "scan/scansource.h"

namespace qmr {

class SaneLibrary;
class SaneWorker;

// The scan source of the system's scanners and cameras, through SANE. The library is used on
// a thread of its own, so that looking for devices and reading pages never stop the window,
// nor does a device that stops answering: closing waits for it a short while, then leaves
// its thread to end by itself.
class SaneSource : public ScanSource
{
    Q_OBJECT
public:
    explicit SaneSource(QObject* parent = nullptr);
    // `library` stands in for the system's SANE (tests).
    explicit SaneSource(std::shared_ptr<SaneLibrary> library, QObject* parent = nullptr);
    ~SaneSource() override;

    void findDevices() override;
    void open(const ScanRequest& request) override;
    void setOption(const QString& name, const QVariant& value) override;
    void readPages() override;
    void nextPage() override;
    void cancel() override;
    void close() override;

private:
    SaneWorker* m_worker = nullptr; // deleted by its thread when that ends
    std::thread m_thread;
    std::future<void> m_ended;
};

} // namespace qmr
