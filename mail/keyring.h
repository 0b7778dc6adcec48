#pragma once

#include <QString>

namespace QKeychain {
class Job;
}

namespace qmr {

// The desktop's keyring (the Secret Service, through QtKeychain), holding the program's entries
// under the service "Quillmere". Each call waits for its answer in a local event loop that
// keeps the windows drawn but takes no input, for at most `answerMs`: a keyring that does not
// answer in time counts as none, as does a desktop without one.
class Keyring
{
public:
    enum class Outcome { Done, NotFound, Unavailable };

    static constexpr int kAnswerMs = 3000;

    explicit Keyring(int answerMs = kAnswerMs) : m_answerMs(answerMs) {}

    Outcome read(const QString& key, QString* value) const;
    Outcome write(const QString& key, const QString& value) const;
    // Done also when there was no such entry.
    Outcome remove(const QString& key) const;

private:
    // Starts the job and waits for it; a job that has not answered in time is left to end by
    // itself (it deletes itself then).
    Outcome run(QKeychain::Job* job, QString* value) const;

    int m_answerMs;
};

} // namespace qmr
