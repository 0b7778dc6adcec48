#include "scan/sanesource.h"

#include <chrono>
#include <pthread.h>

#include "scan/sanelibrary.h"
#include "scan/saneworker.h"
#include "scan/scanlog.h"

namespace qmr {

namespace {

// How long closing waits for a device to let go before leaving it behind.
constexpr std::chrono::seconds kCloseWait{2};

} // namespace

SaneSource::SaneSource(QObject* parent) : SaneSource(SaneLibrary::system(), parent)
{
}

SaneSource::SaneSource(std::shared_ptr<SaneLibrary> library, QObject* parent) : ScanSource(parent)
{
    qRegisterMetaType<ScanRequest>();
    qRegisterMetaType<ScanSetup>();
    qRegisterMetaType<ScanEnd>();
    qRegisterMetaType<QVector<ScanDevice>>();
    qRegisterMetaType<QVector<ScanOption>>();
    m_worker = new SaneWorker(std::move(library));
    const auto queued = Qt::QueuedConnection;
    connect(m_worker, &SaneWorker::devicesFound, this, &ScanSource::devicesFound, queued);
    connect(m_worker, &SaneWorker::opened, this, &ScanSource::opened, queued);
    connect(m_worker, &SaneWorker::optionsChanged, this, &ScanSource::optionsChanged, queued);
    connect(m_worker, &SaneWorker::sheetProgress, this, &ScanSource::sheetProgress, queued);
    connect(m_worker, &SaneWorker::pageAcquired, this, &ScanSource::pageAcquired, queued);
    connect(m_worker, &SaneWorker::finished, this, &ScanSource::finished, queued);
    // It takes no events, and its own thread deletes it.
    m_worker->moveToThread(nullptr);
    std::promise<void> ended;
    m_ended = ended.get_future();
    m_thread = std::thread([worker = m_worker, ended = std::move(ended)]() mutable {
        pthread_setname_np(pthread_self(), "scan");
        worker->run();
        delete worker;
        ended.set_value();
    });
}

SaneSource::~SaneSource()
{
    // A search or a read under way is stopped; the thread closes the device, lets go of the
    // library and ends. A device that does not answer is not waited for long.
    m_worker->requestStop();
    if (m_ended.wait_for(kCloseWait) == std::future_status::ready) {
        m_thread.join();
        return;
    }
    qCWarning(lcScan,
              "The scan device did not answer within %d s; its thread is left to end "
              "when the device lets go.",
              int(kCloseWait.count()));
    m_thread.detach();
}

void SaneSource::findDevices()
{
    m_worker->post([worker = m_worker] { worker->findDevices(); });
}

void SaneSource::open(const ScanRequest& request)
{
    m_worker->post([worker = m_worker, request] { worker->open(request); });
}

void SaneSource::setOption(const QString& name, const QVariant& value)
{
    m_worker->post([worker = m_worker, name, value] { worker->setOption(name, value); });
}

void SaneSource::readPages()
{
    m_worker->post([worker = m_worker] { worker->readPages(); });
}

void SaneSource::nextPage()
{
    m_worker->post([worker = m_worker] { worker->nextPage(); });
}

void SaneSource::cancel()
{
    m_worker->requestCancel();
}

void SaneSource::close()
{
    m_worker->post([worker = m_worker] { worker->close(); });
}

} // namespace qmr
