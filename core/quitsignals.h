#pragma once

#include <QObject>
#include <csignal>
#include <iterator>

class QSocketNotifier;

namespace qmr {

// SIGTERM, SIGINT and SIGHUP (a logout, Ctrl+C, a terminal closed) brought to the thread that
// made this object, where the program can end as it ends by its own command. The handler only
// writes the signal's number into a pipe: the event loop hears it through a notifier, work
// without an event loop asks requested(). A signal that was ignored when the program started
// (SIGHUP under nohup) stays ignored. One object at a time; its end puts back what was there.
class QuitSignals : public QObject
{
    Q_OBJECT
public:
    explicit QuitSignals(QObject* parent = nullptr);
    ~QuitSignals() override;
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

    // True once one of the signals has come; reads what the pipe holds without waiting.
    bool requested();
    // The first signal that came, 0 before.
    int first() const { return m_first; }
    // False when the pipe could not be made: the signals then keep their usual effect.
    bool isWatching() const { return m_read >= 0; }

signals:
    void arrived(int signalNumber);

private:
    void drain();

    static constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};
    int m_read = -1;
    int m_write = -1;
    QSocketNotifier* m_notifier = nullptr;
    struct sigaction m_previous[std::size(kSignals)] = {};
    bool m_installed[std::size(kSignals)] = {};
    int m_first = 0;
};

} // namespace qmr
