#include "text/textreader.h"

#include <QProcessEnvironment>

#include "store/storeerror.h"
#include "text/textlog.h"
#include "text/textworker.h"

namespace qmr {

namespace {

// A page that ended this many workers is not tried again until its file changes.
constexpr int kWorkerEndsAllowed = 2;

} // namespace

TextReader::TextReader(TextIndex& index, QStringList worker, QObject* parent,
                       std::chrono::milliseconds pageTimeLimit)
    : QObject(parent), m_index(index), m_worker(std::move(worker))
{
    m_pageTimer.setSingleShot(true);
    m_pageTimer.setInterval(pageTimeLimit);
    connect(&m_pageTimer, &QTimer::timeout, this, [this] {
        if (!m_current || !m_process)
            return;
        qCWarning(lcText) << "The text worker took too long over page" << m_current->page.id;
        // Its end is taken as one on that page (tried once more, then skipped); an answer
        // already on its way still counts, but no other page goes to the ending worker.
        m_closing = true;
        m_process->kill();
    });
}

TextReader::~TextReader()
{
    // A page half read is read again at the next start; quitting waits for nothing.
    if (m_process) {
        m_process->disconnect(this);
        m_process->kill();
        m_process->waitForFinished(2000);
    }
}

void TextReader::enqueue(const QList<Page>& pages)
{
    const int before = m_total;
    for (const Page& page : pages) {
        if ((m_current && m_current->page.id == page.id) || m_waiting.contains(page.id))
            continue;
        m_queue.push_back(page);
        m_waiting.insert(page.id);
        ++m_total;
    }
    if (m_total != before)
        emit progress(m_done, m_total);
    startNext();
}

void TextReader::setWorker(QStringList worker)
{
    m_worker = std::move(worker);
    if (m_failed) {
        m_failed = false;
        if (m_process) {
            m_process->disconnect(this);
            m_process->kill();
            m_process->waitForFinished(2000); // reaped here, not left to its destructor
            m_process->deleteLater();
            m_process = nullptr;
        }
        m_ready = false;
        m_closing = false;
    } else if (m_process && !m_closing) {
        m_closing = true;
        m_process->closeWriteChannel();
    }
    startNext();
}

void TextReader::setPaused(bool paused)
{
    m_paused = paused;
    startNext();
}

void TextReader::startNext()
{
    if (m_paused || m_failed || m_current)
        return;
    skipPagesRead();
    if (m_queue.empty()) {
        // The worker ends at the end of its input, and its memory goes with it.
        if (m_process && !m_closing) {
            m_closing = true;
            m_process->closeWriteChannel();
        }
        if (m_total > 0) {
            m_done = m_total = 0;
            emit idle();
        }
        return;
    }
    if (!m_process) {
        startWorker();
        return; // the worker's first line starts the page
    }
    if (!m_ready || m_closing)
        return;
    m_current = Current{m_queue.front(), TextIndex::Stamp::of(m_queue.front().path)};
    m_waiting.remove(m_queue.front().id);
    m_queue.pop_front();
    m_process->write(TextWorker::request(m_current->page.id, m_current->page.path));
    m_pageTimer.start();
    emit pageStarted(m_current->page.id, m_process->processId());
}

void TextReader::startWorker()
{
    m_process = new QProcess(this);
    m_ready = false;
    m_pending.clear();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // One thread: the recogniser's own threads would only compete with the window.
    environment.insert(QStringLiteral("OMP_THREAD_LIMIT"), QStringLiteral("1"));
    m_process->setProcessEnvironment(environment);
    m_process->setProcessChannelMode(QProcess::SeparateChannels);
    m_process->setStandardErrorFile(QProcess::nullDevice());
    connect(m_process, &QProcess::readyReadStandardOutput, this, &TextReader::readAnswers);
    connect(m_process, &QProcess::finished, this, &TextReader::workerEnded);
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            workerEnded();
    });
    m_process->start(m_worker.first(), m_worker.mid(1));
}

void TextReader::readAnswers()
{
    m_pending += m_process->readAllStandardOutput();
    qsizetype end;
    while ((end = m_pending.indexOf('\n')) >= 0) {
        const QByteArray line = m_pending.left(end);
        m_pending.remove(0, end + 1);
        const std::optional<TextWorker::Answer> answer = TextWorker::parse(line);
        if (!answer) {
            qCWarning(lcText) << "The text worker said something else:" << line.left(200);
            continue;
        }
        if (answer->ready) {
            m_ready = true;
        } else if (!answer->failure.isEmpty()) {
            m_failed = true;
            emit failed(answer->failure);
        } else if (m_current && answer->pageId == m_current->page.id) {
            if (!keep([&] { m_index.put(m_current->page.id, m_current->stamp, answer->words); }))
                return;
            const int id = m_current->page.id;
            finishCurrent();
            emit pageRead(id);
        }
    }
    startNext();
}

void TextReader::workerEnded()
{
    QProcess* ended = m_process;
    if (!ended)
        return;
    m_process = nullptr;
    ended->disconnect(this);
    ended->deleteLater();
    if (m_failed)
        return;
    if (m_closing) {
        m_closing = false;
        m_ready = false;
        // Ended on purpose between pages; one that ended on a page is counted there below.
        if (!m_current) {
            startNext();
            return;
        }
    }
    if (!m_ready && !m_current) {
        // It ended before it could read anything: starting it again would end the same way.
        m_failed = true;
        qCWarning(lcText) << "The text worker could not start:" << ended->errorString();
        emit failed(tr("The text on the pages cannot be read: the reading worker does not "
                       "start (%1).")
                        .arg(ended->errorString()));
        return;
    }
    m_ready = false;
    if (m_current) {
        m_pageTimer.stop();
        const Current page = *m_current;
        m_current.reset();
        qCWarning(lcText) << "The text worker ended while reading page" << page.page.id;
        bool skip = false;
        if (!keep([&] {
                skip = m_index.countWorkerEnd(page.page.id, page.stamp) >= kWorkerEndsAllowed;
                if (skip)
                    m_index.markUnreadable(page.page.id, page.stamp);
            }))
            return;
        if (skip) {
            ++m_done;
            emit progress(m_done, m_total);
            emit pageUnreadable(page.page.id);
        } else {
            m_queue.push_front(page.page);
            m_waiting.insert(page.page.id);
        }
    }
    startNext();
}

bool TextReader::keep(const std::function<void()>& write)
{
    try {
        write();
        return true;
    } catch (const StoreError& error) {
        // A full disk or a file taken away: reading stops for this run, the program goes on,
        // and what is not kept is read at the next start.
        qCWarning(lcText) << "The page text could not be kept:" << error.message();
        m_failed = true;
        m_pageTimer.stop();
        m_current.reset();
        if (m_process) {
            m_process->disconnect(this);
            m_process->kill();
        }
        emit failed(tr("The text on the pages cannot be kept: %1").arg(error.message()));
        return false;
    }
}

void TextReader::skipPagesRead()
{
    // A look over the pages sees the index a moment before it queues them: a page read in that
    // moment is counted, not read again.
    while (!m_queue.empty()) {
        const Page& next = m_queue.front();
        std::optional<TextIndex::Entry> entry;
        try {
            entry = m_index.entry(next.id);
        } catch (const StoreError&) {
            return; // reading it will say what is wrong with the index
        }
        if (!entry || entry->state != TextIndex::State::Read ||
            entry->stamp != TextIndex::Stamp::of(next.path))
            return;
        m_waiting.remove(next.id);
        m_queue.pop_front();
        ++m_done;
        emit progress(m_done, m_total);
    }
}

void TextReader::finishCurrent()
{
    m_pageTimer.stop();
    m_current.reset();
    ++m_done;
    emit progress(m_done, m_total);
}

} // namespace qmr
