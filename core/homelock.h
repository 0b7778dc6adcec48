#pragma once

#include <QLockFile>
#include <QString>
#include <QTimer>
#include <chrono>

#include "core/apphome.h"

namespace qmr {

// One program per home: a lock file in the home, held for the whole run. Two programs
// writing one store would each keep a tree and a page list that the other no longer matches.
// A lock left by a run that crashed or was killed on this machine is taken over at once (its
// process is gone); one from another machine sharing the disk is taken over once it has not
// been refreshed for kStaleAfter, since a living holder refreshes it every kRefreshEvery.
class HomeLock
{
public:
    static constexpr std::chrono::milliseconds kRefreshEvery{std::chrono::minutes(1)};
    static constexpr std::chrono::milliseconds kStaleAfter{std::chrono::minutes(5)};

    explicit HomeLock(const AppHome& home);
    ~HomeLock();
    HomeLock(const HomeLock&) = delete;
    HomeLock& operator=(const HomeLock&) = delete;

    // Takes the home for this run; false when another run holds it or the lock cannot be
    // made, and refusal() says so with the home and the holder, or with the system's reason.
    bool acquire();
    bool isHeld() const { return m_lock.isLocked(); }
    const QString& refusal() const { return m_refusal; }
    QString filePath() const { return m_path; }
    static QString fileName() { return QStringLiteral("qmr.lock"); }

private:
    void refresh();
    // The system's reason why the lock file cannot be made here, "" when making it works.
    QString whyNotMade() const;

    QString m_home;
    QString m_path;
    QLockFile m_lock;
    QTimer m_refresh;
    QString m_refusal;
};

} // namespace qmr
