#pragma once

#include <QList>
#include <QObject>
#include <QProcess>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <deque>
#include <functional>
#include <optional>

#include "store/textindex.h"

namespace qmr {

// Has the pages' text read by the worker process, one page at a time, and keeps it in the
// index. A worker that ends while it reads a page is started again; a page that has ended a
// worker twice is marked unreadable and skipped, so one bad page cannot stop the rest. A worker
// that takes longer than the page time limit over one page is ended, which counts the same.
class TextReader : public QObject
{
    Q_OBJECT

public:
    struct Page
    {
        int id = -1;
        QString path;
    };

    // Far beyond a 600 dpi page of small print: a worker this long on a page hangs.
    static constexpr std::chrono::milliseconds kPageTimeLimit{std::chrono::minutes(2)};

    // `worker` is the program and its arguments that start a worker.
    TextReader(TextIndex& index, QStringList worker, QObject* parent = nullptr,
               std::chrono::milliseconds pageTimeLimit = kPageTimeLimit);
    ~TextReader() override;

    // Adds pages to the end of the queue (a page already waiting is not added twice).
    void enqueue(const QList<Page>& pages);
    // Another worker (its languages changed): the one running ends after the page it reads,
    // and the next page starts the new one. A reading stopped by a failure tries again.
    void setWorker(QStringList worker);
    // Paused, the page being read is finished and no other is started.
    void setPaused(bool paused);
    bool isPaused() const { return m_paused; }
    bool isIdle() const { return !m_current && m_queue.empty(); }
    int done() const { return m_done; }
    int total() const { return m_total; }

signals:
    void progress(int done, int total);
    // A worker took the page (its process id): the moment a test may end it.
    void pageStarted(int pageId, qint64 workerProcessId);
    void pageRead(int pageId);
    void pageUnreadable(int pageId);
    // Every queued page is done.
    void idle();
    // No worker can read (a language pack is missing): the queue waits, the message says why.
    void failed(const QString& message);

private:
    void startNext();
    void startWorker();
    void readAnswers();
    void workerEnded();
    void finishCurrent();
    void skipPagesRead();
    // Runs a change of the index; when the index refuses it, reading stops with a message
    // and false comes back.
    bool keep(const std::function<void()>& write);

    TextIndex& m_index;
    QStringList m_worker;
    QProcess* m_process = nullptr;
    QTimer m_pageTimer;
    bool m_ready = false;
    bool m_paused = false;
    bool m_failed = false;
    bool m_closing = false; // its input closed, the worker is ending
    std::deque<Page> m_queue;
    QSet<int> m_waiting; // the pages in the queue, by id
    struct Current
    {
        Page page;
        TextIndex::Stamp stamp;
    };
    std::optional<Current> m_current;
    QByteArray m_pending;
    int m_done = 0;
    int m_total = 0;
};

} // namespace qmr
