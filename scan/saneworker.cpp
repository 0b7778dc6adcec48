#include "scan/saneworker.h"

#include <cstring>
#include <system_error>
#include <thread>
#include <sane/saneopts.h>

#include "scan/frameassembler.h"
#include "scan/optionmatch.h"
#include "scan/saneoptionreader.h"

namespace qmr {

namespace {

constexpr qsizetype kReadChunk = 256 * 1024;
// A whole JPEG file as one frame: announced for a later version of the standard, and sent by
// a few backends already.
constexpr int kFrameJpeg = 0x0B;

QString statusText(SANE_Status status)
{
    return QString::fromUtf8(sane_strstatus(status));
}

QString text(SANE_String_Const s)
{
    return s ? QString::fromUtf8(s) : QString();
}

FrameFormat::Kind kindOf(SANE_Frame frame)
{
    switch (int(frame)) {
    case SANE_FRAME_GRAY:
        return FrameFormat::Kind::Grey;
    case SANE_FRAME_RGB:
        return FrameFormat::Kind::Rgb;
    case SANE_FRAME_RED:
        return FrameFormat::Kind::Red;
    case SANE_FRAME_GREEN:
        return FrameFormat::Kind::Green;
    case SANE_FRAME_BLUE:
        return FrameFormat::Kind::Blue;
    case kFrameJpeg:
        return FrameFormat::Kind::Jpeg;
    default:
        return FrameFormat::Kind::Other;
    }
}

} // namespace

SaneWorker::SaneWorker(std::shared_ptr<SaneLibrary> library) : m_library(std::move(library))
{
}

SaneWorker::~SaneWorker()
{
    shutdown();
}

void SaneWorker::run()
{
    for (;;) {
        std::function<void()> job;
        {
            std::unique_lock lock(m_queueLock);
            m_queueChanged.wait(lock, [this] { return m_stopping || !m_jobs.empty(); });
            if (m_stopping)
                break;
            job = std::move(m_jobs.front());
            m_jobs.pop_front();
        }
        job();
    }
    shutdown();
}

void SaneWorker::post(std::function<void()> job)
{
    {
        std::lock_guard lock(m_queueLock);
        if (m_stopping)
            return;
        m_jobs.push_back(std::move(job));
    }
    m_queueChanged.notify_one();
}

void SaneWorker::requestCancel()
{
    m_cancelled = true;
    // Between sheets the flag is enough. A read under way is stopped by the device, whose
    // cancel may take as long as it likes: it is made on a thread of its own, once a scan.
    if (!m_device->reading || m_cancelSent.exchange(true))
        return;
    try {
        std::thread([device = m_device, library = m_library, opening = m_device->opening.load()] {
            ++device->cancelling;
            const SANE_Handle handle = device->handle.load();
            if (handle && device->reading && device->opening == opening)
                library->cancel(handle);
            --device->cancelling;
            device->cancelling.notify_all();
        }).detach();
    } catch (const std::system_error&) {
        // No thread to be had: the read stops after its present piece.
    }
}

void SaneWorker::requestStop()
{
    // The cancel comes first: once stopping, the thread may end and delete this at any moment
    // after the lock is let go.
    requestCancel();
    std::lock_guard lock(m_queueLock);
    m_stopping = true;
    m_queueChanged.notify_one();
}

Attempt<> SaneWorker::ensureLibrary()
{
    if (m_initialised)
        return {};
    const SANE_Status status = m_library->init();
    if (status != SANE_STATUS_GOOD)
        return Failure(statusText(status));
    m_initialised = true;
    return {};
}

void SaneWorker::shutdown()
{
    closeHandle();
    if (m_initialised) {
        m_library->exit();
        m_initialised = false;
    }
}

void SaneWorker::closeHandle()
{
    m_device->reading = false;
    const SANE_Handle handle = m_device->handle.exchange(nullptr);
    if (!handle)
        return;
    m_index.clear();
    // A cancel on its own thread may still be inside the handle: it is closed after that.
    for (int n = m_device->cancelling; n != 0; n = m_device->cancelling)
        m_device->cancelling.wait(n);
    m_library->cancel(handle);
    m_library->close(handle);
}

void SaneWorker::findDevices()
{
    if (m_stopping)
        return;
    QString failure;
    QVector<ScanDevice> devices;
    if (const Attempt<> library = ensureLibrary(); !library) {
        failure = library.why();
    } else {
        const SANE_Device** list = nullptr;
        const SANE_Status status = m_library->devices(&list);
        if (status != SANE_STATUS_GOOD)
            failure = statusText(status);
        for (int i = 0; list && list[i]; ++i)
            devices.append(ScanDevice{text(list[i]->name), text(list[i]->vendor),
                                      text(list[i]->model), text(list[i]->type)});
        m_known.clear();
        for (const ScanDevice& device : devices)
            m_known.insert(device.name, device);
    }
    emit devicesFound(devices, failure);
}

// ---- options ------------------------------------------------------------------------------

QVector<ScanOption> SaneWorker::readOptions()
{
    m_index.clear();
    return SaneOptionReader::read(*m_library, handle(), &m_index);
}

int SaneWorker::indexOf(const QString& name) const
{
    return m_index.value(name, -1);
}

QString SaneWorker::setValue(int index, const QVariant& value)
{
    const SANE_Handle handle = this->handle();
    const SANE_Option_Descriptor* d =
        handle && index > 0 ? m_library->descriptor(handle, index) : nullptr;
    if (!d)
        return statusText(SANE_STATUS_INVAL);
    SANE_Int info = 0;
    SANE_Status status = SANE_STATUS_UNSUPPORTED;
    switch (d->type) {
    case SANE_TYPE_BOOL: {
        SANE_Word w = value.toBool() ? SANE_TRUE : SANE_FALSE;
        status = m_library->control(handle, index, SANE_ACTION_SET_VALUE, &w, &info);
        break;
    }
    case SANE_TYPE_INT: {
        SANE_Word w = SANE_Word(qRound(value.toDouble()));
        if (d->size == SANE_Int(sizeof(SANE_Word)))
            status = m_library->control(handle, index, SANE_ACTION_SET_VALUE, &w, &info);
        break;
    }
    case SANE_TYPE_FIXED: {
        SANE_Word w = SANE_FIX(value.toDouble());
        if (d->size == SANE_Int(sizeof(SANE_Word)))
            status = m_library->control(handle, index, SANE_ACTION_SET_VALUE, &w, &info);
        break;
    }
    case SANE_TYPE_STRING: {
        const QByteArray utf8 = value.toString().toUtf8();
        QByteArray buffer(qMax<SANE_Int>(d->size, 1), '\0');
        std::memcpy(buffer.data(), utf8.constData(), size_t(qMin(utf8.size(), buffer.size() - 1)));
        status = m_library->control(handle, index, SANE_ACTION_SET_VALUE, buffer.data(), &info);
        break;
    }
    case SANE_TYPE_BUTTON:
        status = m_library->control(handle, index, SANE_ACTION_SET_VALUE, nullptr, &info);
        break;
    default:
        break;
    }
    return status == SANE_STATUS_GOOD ? QString() : statusText(status);
}

double SaneWorker::currentResolution() const
{
    const SANE_Handle handle = this->handle();
    for (const char* name : {SANE_NAME_SCAN_RESOLUTION, SANE_NAME_SCAN_X_RESOLUTION}) {
        const int index = indexOf(QLatin1String(name));
        const SANE_Option_Descriptor* d =
            handle && index > 0 ? m_library->descriptor(handle, index) : nullptr;
        if (!d || !SANE_OPTION_IS_ACTIVE(d->cap) || d->size != SANE_Int(sizeof(SANE_Word)))
            continue;
        SANE_Word w = 0;
        if (m_library->control(handle, index, SANE_ACTION_GET_VALUE, &w, nullptr) !=
            SANE_STATUS_GOOD)
            continue;
        return d->type == SANE_TYPE_FIXED ? SANE_UNFIX(w) : double(w);
    }
    return m_request.dpi;
}

QString SaneWorker::deviceLabel() const
{
    const auto known = m_known.constFind(m_request.device);
    return known != m_known.cend() ? known->label() : m_request.device;
}

void SaneWorker::applyRequest()
{
    m_setup = ScanSetup();
    m_setup.device = deviceLabel();
    auto find = [](const QVector<ScanOption>& options, const char* name) -> const ScanOption* {
        for (const ScanOption& o : options)
            if (o.name == QLatin1String(name))
                return &o;
        return nullptr;
    };
    auto usable = [](const ScanOption* o) { return o && o->active && o->settable; };

    // The source first: it can change which modes and resolutions the device offers.
    QVector<ScanOption> options = readOptions();
    if (const ScanOption* source = find(options, SANE_NAME_SCAN_SOURCE);
        usable(source) && source->constraint == ScanOption::Constraint::StringList) {
        const OptionMatch::SourceChoice choice =
            OptionMatch::chooseSource(source->strings, m_request.feeder, m_request.duplex);
        if (!choice.value.isEmpty() && setValue(indexOf(source->name), choice.value).isEmpty()) {
            m_setup.feeder = choice.feeder;
            m_setup.duplex = choice.duplex;
        }
        options = readOptions();
    }
    if (const ScanOption* source = find(options, SANE_NAME_SCAN_SOURCE))
        m_setup.source = source->value.toString();
    // Some devices turn both sides over with a switch of its own.
    if (m_setup.feeder && m_request.duplex && !m_setup.duplex) {
        const ScanOption* duplex = find(options, "duplex");
        if (usable(duplex) && duplex->type == ScanOption::Type::Bool &&
            setValue(indexOf(duplex->name), true).isEmpty()) {
            m_setup.duplex = true;
            options = readOptions();
        }
    }

    std::optional<ScanColour> gives;
    if (const ScanOption* mode = find(options, SANE_NAME_SCAN_MODE);
        usable(mode) && mode->constraint == ScanOption::Constraint::StringList) {
        const OptionMatch::ModeChoice choice =
            OptionMatch::chooseMode(mode->strings, m_request.colour);
        if (!choice.value.isEmpty() && setValue(indexOf(mode->name), choice.value).isEmpty())
            gives = choice.colour;
        options = readOptions();
    }
    if (const ScanOption* mode = find(options, SANE_NAME_SCAN_MODE))
        m_setup.mode = mode->value.toString();
    // Line art from a device that has none of its own: its grey at one bit a pixel where it
    // offers that; otherwise eight bits, which the page is reduced from afterwards.
    if (const ScanOption* depth = find(options, SANE_NAME_BIT_DEPTH); usable(depth)) {
        const bool oneBit = m_request.colour == ScanColour::LineArt && gives == ScanColour::Grey;
        const double wanted = oneBit ? 1 : 8;
        const bool offered = depth->constraint == ScanOption::Constraint::WordList
                                 ? depth->words.contains(wanted)
                                 : OptionMatch::nearestValue(*depth, wanted) == wanted;
        if (gives != ScanColour::LineArt && offered && depth->value.toDouble() != wanted) {
            setValue(indexOf(depth->name), wanted);
            options = readOptions();
        }
    }

    bool resolutionSet = false;
    for (const char* name :
         {SANE_NAME_SCAN_RESOLUTION, SANE_NAME_SCAN_X_RESOLUTION, SANE_NAME_SCAN_Y_RESOLUTION}) {
        if (resolutionSet && qstrcmp(name, SANE_NAME_SCAN_X_RESOLUTION) == 0)
            break;
        const ScanOption* resolution = find(options, name);
        if (!usable(resolution))
            continue;
        setValue(indexOf(resolution->name), OptionMatch::nearestValue(*resolution, m_request.dpi));
        resolutionSet = true;
        options = readOptions();
    }
    m_setup.dpi = currentResolution();
}

void SaneWorker::setOption(const QString& name, const QVariant& value)
{
    if (m_stopping)
        return;
    if (!handle()) {
        emit optionsChanged({}, statusText(SANE_STATUS_INVAL));
        return;
    }
    const QString failure = setValue(indexOf(name), value);
    emit optionsChanged(readOptions(), failure);
}

// ---- the scan -----------------------------------------------------------------------------

void SaneWorker::open(const ScanRequest& request)
{
    if (m_stopping)
        return;
    closeHandle();
    m_cancelled = false;
    m_cancelSent = false;
    m_request = request;
    m_sheet = 0;
    if (const Attempt<> library = ensureLibrary(); !library) {
        finish(ScanEnd::Reason::Failed, library.why(), true);
        return;
    }
    SANE_Handle handle = nullptr;
    const SANE_Status status = m_library->open(request.device.toUtf8().constData(), &handle);
    if (status != SANE_STATUS_GOOD || !handle) {
        finish(ScanEnd::Reason::Failed, statusText(status), true);
        return;
    }
    ++m_device->opening;
    m_device->handle = handle;
    applyRequest();
    emit opened(readOptions(), m_setup);
}

void SaneWorker::readPages()
{
    if (m_stopping)
        return;
    if (!handle()) {
        finish(ScanEnd::Reason::Failed, statusText(SANE_STATUS_INVAL), true);
        return;
    }
    // The device's options dialog may have changed the resolution.
    m_setup.dpi = currentResolution();
    m_sheet = 0;
    readSheet();
}

void SaneWorker::nextPage()
{
    if (!handle())
        return;
    if (m_cancelled || m_stopping)
        finish(ScanEnd::Reason::Cancelled);
    else if (!m_setup.feeder)
        finish(ScanEnd::Reason::Done);
    else
        readSheet();
}

void SaneWorker::close()
{
    if (handle())
        finish(ScanEnd::Reason::Cancelled);
}

void SaneWorker::finish(ScanEnd::Reason reason, const QString& status, bool atOpen)
{
    m_device->reading = false;
    ScanEnd end;
    end.reason = reason;
    end.device = deviceLabel();
    end.status = status;
    end.atOpen = atOpen;
    emit finished(end);
    closeHandle();
    m_cancelled = false;
}

QImage SaneWorker::inWantedColour(QImage image) const
{
    if (image.isNull())
        return image;
    const int dpmX = image.dotsPerMeterX();
    const int dpmY = image.dotsPerMeterY();
    if (m_request.colour == ScanColour::Grey && image.format() == QImage::Format_RGB32)
        image = image.convertToFormat(QImage::Format_Grayscale8);
    else if (m_request.colour == ScanColour::LineArt && image.format() != QImage::Format_Mono)
        image = image.convertToFormat(QImage::Format_Mono, Qt::MonoOnly | Qt::ThresholdDither);
    image.setDotsPerMeterX(dpmX);
    image.setDotsPerMeterY(dpmY);
    return image;
}

void SaneWorker::readSheet()
{
    const SANE_Handle handle = this->handle();
    ++m_sheet;
    FrameAssembler assembler;
    QByteArray buffer(kReadChunk, Qt::Uninitialized);
    int frame = 0;
    auto stop = [&](SANE_Status status) {
        if (m_cancelled || m_stopping || status == SANE_STATUS_CANCELLED)
            finish(ScanEnd::Reason::Cancelled);
        // An empty feeder after the first sheet is the end of the stack, not a failure.
        else if (status == SANE_STATUS_NO_DOCS && m_sheet > 1 && frame == 0 &&
                 assembler.receivedBytes() == 0)
            finish(ScanEnd::Reason::Done);
        else
            finish(ScanEnd::Reason::Failed, statusText(status));
    };

    for (;;) {
        // Reading first, then the flag: a cancel from outside sees the one or this the other.
        m_device->reading = true;
        if (m_cancelled || m_stopping) {
            stop(SANE_STATUS_CANCELLED);
            return;
        }
        SANE_Status status = m_library->start(handle);
        if (status != SANE_STATUS_GOOD) {
            stop(status);
            return;
        }
        SANE_Parameters p;
        status = m_library->parameters(handle, &p);
        if (status != SANE_STATUS_GOOD) {
            stop(status);
            return;
        }
        FrameFormat format;
        format.kind = kindOf(p.format);
        format.depth = p.depth;
        format.bytesPerLine = p.bytes_per_line;
        format.pixelsPerLine = p.pixels_per_line;
        format.lines = p.lines;
        if (const Attempt<> begun = assembler.beginFrame(format); !begun) {
            finish(ScanEnd::Reason::Failed, begun.why());
            return;
        }
        const bool bands = format.kind == FrameFormat::Kind::Red ||
                           format.kind == FrameFormat::Kind::Green ||
                           format.kind == FrameFormat::Kind::Blue;
        const int frames = bands ? 3 : 1;
        const qint64 expected = assembler.expectedBytes();
        int shown = -2;
        auto report = [&] {
            const int percent =
                expected > 0
                    ? int(qMin<qint64>(
                          100, (frame * 100 + assembler.receivedBytes() * 100 / expected) / frames))
                    : -1;
            if (percent != shown) {
                shown = percent;
                emit sheetProgress(m_sheet, percent);
            }
        };
        report();
        for (;;) {
            if (m_cancelled || m_stopping) {
                stop(SANE_STATUS_CANCELLED);
                return;
            }
            SANE_Int length = 0;
            status = m_library->read(handle, reinterpret_cast<SANE_Byte*>(buffer.data()),
                                     SANE_Int(buffer.size()), &length);
            // A cancel from outside may end the data early as if the frame were whole.
            if (status == SANE_STATUS_EOF && (m_cancelled || m_stopping))
                status = SANE_STATUS_CANCELLED;
            if (status == SANE_STATUS_EOF)
                break;
            if (status != SANE_STATUS_GOOD) {
                stop(status);
                return;
            }
            assembler.append(buffer.constData(), length);
            report();
        }
        assembler.endFrame();
        ++frame;
        if (p.last_frame)
            break;
    }
    m_device->reading = false;
    emit pageAcquired(inWantedColour(assembler.image(m_setup.dpi)), m_sheet);
}

} // namespace qmr
