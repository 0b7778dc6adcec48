#include "mail/keyring.h"

#include <QEventLoop>
#include <QTimer>
#include <optional>
#include <qt6keychain/keychain.h>

#include "mail/maillog.h"

namespace qmr {

namespace {

const QString kService = QStringLiteral("Quillmere");

} // namespace

Keyring::Outcome Keyring::run(QKeychain::Job* job, QString* value) const
{
    job->setAutoDelete(true);
    std::optional<Outcome> outcome;
    QEventLoop loop;
    // The loop is the receiver's context: an answer after the wait is over reaches nobody.
    QObject::connect(job, &QKeychain::Job::finished, &loop, [&](QKeychain::Job* done) {
        switch (done->error()) {
        case QKeychain::NoError:
            if (auto* read = qobject_cast<QKeychain::ReadPasswordJob*>(done); read && value)
                *value = read->textData();
            outcome = Outcome::Done;
            break;
        case QKeychain::EntryNotFound:
            outcome = Outcome::NotFound;
            break;
        default:
            qCDebug(lcMail).noquote() << "The keyring cannot be used:" << done->errorString();
            outcome = Outcome::Unavailable;
            break;
        }
        loop.quit();
    });
    QTimer::singleShot(m_answerMs, &loop, &QEventLoop::quit);
    job->start();
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (!outcome) {
        qCDebug(lcMail) << "The keyring did not answer within" << m_answerMs << "ms.";
        return Outcome::Unavailable;
    }
    return *outcome;
}

Keyring::Outcome Keyring::read(const QString& key, QString* value) const
{
    auto* job = new QKeychain::ReadPasswordJob(kService);
    job->setKey(key);
    return run(job, value);
}

Keyring::Outcome Keyring::write(const QString& key, const QString& value) const
{
    auto* job = new QKeychain::WritePasswordJob(kService);
    job->setKey(key);
    job->setTextData(value);
    return run(job, nullptr);
}

Keyring::Outcome Keyring::remove(const QString& key) const
{
    auto* job = new QKeychain::DeletePasswordJob(kService);
    job->setKey(key);
    const Outcome outcome = run(job, nullptr);
    return outcome == Outcome::NotFound ? Outcome::Done : outcome;
}

} // namespace qmr
