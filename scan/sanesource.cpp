#include "scan/sanesource.h"

#include "scan/sanelibrary.h"
#include "scan/saneworker.h"

namespace qmr {

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
    m_worker->moveToThread(&m_thread);
    connect(m_worker, &SaneWorker::devicesFound, this, &ScanSource::devicesFound);
    connect(m_worker, &SaneWorker::opened, this, &ScanSource::opened);
    connect(m_worker, &SaneWorker::optionsChanged, this, &ScanSource::optionsChanged);
    connect(m_worker, &SaneWorker::sheetProgress, this, &ScanSource::sheetProgress);
    connect(m_worker, &SaneWorker::pageAcquired, this, &ScanSource::pageAcquired);
    connect(m_worker, &SaneWorker::finished, this, &ScanSource::finished);
    m_thread.setObjectName(QStringLiteral("scan"));
    m_thread.start();
}

SaneSource::~SaneSource()
{
    // A search or a read still running ends first; then the library is let go on its thread.
    m_worker->requestStop();
    QMetaObject::invokeMethod(m_worker, &SaneWorker::shutdown, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
    delete m_worker;
}

void SaneSource::findDevices()
{
    QMetaObject::invokeMethod(m_worker, &SaneWorker::findDevices, Qt::QueuedConnection);
}

void SaneSource::open(const ScanRequest& request)
{
    QMetaObject::invokeMethod(
        m_worker, [worker = m_worker, request] { worker->open(request); }, Qt::QueuedConnection);
}

void SaneSource::setOption(const QString& name, const QVariant& value)
{
    QMetaObject::invokeMethod(
        m_worker, [worker = m_worker, name, value] { worker->setOption(name, value); },
        Qt::QueuedConnection);
}

void SaneSource::readPages()
{
    QMetaObject::invokeMethod(m_worker, &SaneWorker::readPages, Qt::QueuedConnection);
}

void SaneSource::nextPage()
{
    QMetaObject::invokeMethod(m_worker, &SaneWorker::nextPage, Qt::QueuedConnection);
}

void SaneSource::cancel()
{
    m_worker->requestCancel();
}

void SaneSource::close()
{
    QMetaObject::invokeMethod(m_worker, &SaneWorker::close, Qt::QueuedConnection);
}

} // namespace qmr
