#include "mail/sendmailtransport.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>

namespace qmr {

std::optional<MailFailure> SendmailTransport::send(const QByteArray& message, const QString&,
                                                   const QStringList&,
                                                   const std::atomic_bool& cancel)
{
    const QFileInfo program(m_program);
    if (m_program.isEmpty() || !program.exists() || !program.isExecutable())
        return MailFailure{2, tr("The mail program '%1' was not found. Set its path "
                                 "(SendmailPath) in File/Email Settings.")
                                  .arg(m_program)};
    QProcess process;
    process.start(m_program, {QStringLiteral("-t"), QStringLiteral("-i")});
    if (!process.waitForStarted(10000))
        return MailFailure{2, tr("The mail program '%1' could not be started: %2")
                                  .arg(m_program, process.errorString())};
    process.write(message);
    process.closeWriteChannel();
    QElapsedTimer clock;
    clock.start();
    while (!process.waitForFinished(100)) {
        if (process.state() == QProcess::NotRunning)
            break;
        if (cancel.load() || clock.elapsed() > kTimeLimitMs) {
            process.kill();
            process.waitForFinished(2000);
            if (cancel.load())
                return MailFailure{18, tr("Sending was cancelled.")};
            return MailFailure{62, tr("The mail program '%1' did not finish within "
                                      "%2 seconds.")
                                       .arg(m_program)
                                       .arg(kTimeLimitMs / 1000)};
        }
    }
    if (process.exitStatus() != QProcess::NormalExit)
        return MailFailure{
            process.exitCode(),
            tr("The mail program '%1' stopped: %2").arg(m_program, process.errorString())};
    if (process.exitCode() != 0) {
        const QString said = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
        return MailFailure{
            process.exitCode(),
            tr("The mail program '%1' ended with exit code %2%3")
                .arg(m_program)
                .arg(process.exitCode())
                .arg(said.isEmpty() ? QStringLiteral(".") : QStringLiteral(": ") + said)};
    }
    return std::nullopt;
}

} // namespace qmr
