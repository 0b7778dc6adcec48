#include "mail/mailsender.h"

#include <QApplication>
#include <QEventLoop>
#include <QProgressDialog>
#include <QThread>
#include <QTimer>

#include "core/imageloader.h"
#include "core/prompter.h"
#include "mail/attachmentlist.h"
#include "mail/maillog.h"
#include "mail/sendmailtransport.h"
#include "mail/smtptransport.h"

namespace qmr {

namespace {

// How long a send may take before the busy window with its Cancel button shows.
constexpr int kQuietMs = 400;

} // namespace

std::unique_ptr<MailTransport> MailSender::transportFor(const MailSettings& settings)
{
    switch (settings.system) {
    case MailSystem::Cdonts:
        return std::make_unique<SmtpTransport>(settings);
    case MailSystem::Mapi:
        return std::make_unique<SendmailTransport>(settings.sendmailPath);
    case MailSystem::None:
        break;
    }
    return nullptr;
}

QString MailSender::failureText(MailSystem system, const MailFailure& failure)
{
    const QString prefix =
        system == MailSystem::Cdonts ? tr("SendEmailNTS: Error  #") : tr("SendEmail: Error  #");
    return prefix + QString::number(failure.number) + QLatin1Char(' ') + failure.text;
}

std::optional<MailFailure> MailSender::transfer(MailTransport& transport, const QByteArray& message,
                                                const QString& from, const QStringList& recipients,
                                                bool* cancelled)
{
    std::atomic_bool cancel{false};
    std::atomic_bool done{false};
    std::optional<MailFailure> result;
    QEventLoop loop;
    std::unique_ptr<QThread> worker(QThread::create([&] {
        result = transport.send(message, from, recipients, cancel);
        done = true;
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    }));
    QApplication::setOverrideCursor(Qt::WaitCursor);
    worker->start();
    // A quick send shows nothing but the pointer; what is typed meanwhile waits.
    QTimer::singleShot(kQuietMs, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (!done) {
        QProgressDialog busy(tr("Sending mail..."), tr("Cancel"), 0, 0, m_parent);
        busy.setWindowTitle(Prompter::caption());
        busy.setWindowModality(Qt::ApplicationModal);
        busy.setMinimumDuration(0);
        busy.setAutoClose(false);
        busy.setAutoReset(false);
        QObject::connect(&busy, &QProgressDialog::canceled, &loop, [&] {
            cancel = true;
            busy.setLabelText(tr("Cancelling..."));
        });
        busy.show();
        while (!done)
            loop.exec();
    }
    worker->wait();
    QApplication::restoreOverrideCursor();
    if (cancelled)
        *cancelled = cancel.load();
    return result;
}

bool MailSender::refused(const QString& from, const QStringList& recipients)
{
    Attempt<> allowed = MailAddress::check(recipients, m_recipientField);
    if (allowed)
        allowed = MailAddress::check({from}, MailAddress::senderField());
    if (allowed)
        return false;
    if (m_logPrefix.isEmpty())
        m_prompter.tell(allowed.why());
    else
        qCWarning(lcMail).noquote() << m_logPrefix + QLatin1Char(' ') + allowed.why();
    return true;
}

bool MailSender::send(const MailSettings& settings, const QString& sendTo, const QString& subject,
                      const QString& body, const QString& attachments)
{
    const MailSystem system = settings.system;
    const std::unique_ptr<MailTransport> transport = transportFor(settings);
    if (!transport)
        return false;
    const int count = AttachmentList::count(attachments);
    MailMessage message;
    message.from = settings.fromAddress.trimmed();
    message.to = sendTo;
    if (refused(message.from, message.recipients()))
        return false;
    message.subject = subject;
    message.body = AttachmentList::bodyWithRoom(body, count);
    message.attachments = AttachmentList::paths(attachments);
    // A picture no one could open is not sent on: the message names it, and nothing goes.
    for (const QString& path : message.attachments) {
        if (const Attempt<> fits = ImageLoader::checkFile(path); !fits) {
            m_prompter.tell(fits.why());
            return false;
        }
    }

    std::optional<MailFailure> failure;
    const QByteArray bytes = MimeMessage::build(message, &failure);
    if (!failure) {
        bool cancelled = false;
        failure = transfer(*transport, bytes, message.from, message.recipients(), &cancelled);
        if (failure && cancelled)
            return false; // the user stopped it: nothing to tell
    }
    if (failure) {
        if (system == MailSystem::Cdonts && failure->number < 0)
            m_prompter.tell(tr("You do not have CDONTS loaded.  Try using MAPI email "
                               "system in File/Email Settings."));
        else
            m_prompter.tell(failureText(system, *failure));
        return false;
    }
    m_prompter.tell(tr("Message sent."));
    return true;
}

} // namespace qmr
