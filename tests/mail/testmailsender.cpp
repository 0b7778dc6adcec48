#include <QElapsedTimer>
#include <QEventLoop>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include "mail/mailsender.h"
#include "mail/sendmailtransport.h"
#include "mail/smtptransport.h"
#include "mailharness.h"
#include "smtpsink.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// Runs a transport on a worker thread while this thread answers as the server, at most
// `limitMs` long.
std::optional<MailFailure> sendOffThread(MailTransport& transport, const QByteArray& message,
                                         const QString& from, const QStringList& to,
                                         int limitMs = 15000)
{
    std::atomic_bool cancel{false};
    std::optional<MailFailure> result;
    QEventLoop loop;
    std::unique_ptr<QThread> worker(
        QThread::create([&] { result = transport.send(message, from, to, cancel); }));
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(limitMs, &loop, [&] {
        cancel = true;
        loop.quit();
    });
    worker->start();
    loop.exec();
    worker->wait();
    return result;
}

struct Files
{
    QTemporaryDir dir;
    QString page = dir.filePath("1.jpg");
    QString letter = dir.filePath("letter.pdf");
    Files()
    {
        QImage image(120, 90, QImage::Format_RGB32);
        image.fill(Qt::darkYellow);
        image.save(page, "JPG");
        QFile f(letter);
        f.open(QIODevice::WriteOnly);
        f.write("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n1 0 obj\n<<>>\nendobj\n.\n..\n");
    }
    static QByteArray bytes(const QString& path)
    {
        QFile f(path);
        f.open(QIODevice::ReadOnly);
        return f.readAll();
    }
};

// The parts of a sent message that the sender wrote: body and attachments by file name.
void checkMessage(const QByteArray& text, const Files& files)
{
    const test::ParsedMessage m(text);
    QCOMPARE(m.headers.value("from"), QByteArray("me@example.org"));
    QCOMPARE(m.headers.value("to"), QByteArray("you@example.org"));
    QCOMPARE(m.headers.value("subject"), QByteArray("Two pages"));
    QVERIFY(!m.headers.value("date").isEmpty());
    QVERIFY(m.headers.value("message-id").endsWith("@example.org>"));
    QCOMPARE(m.parts.size(), 3);
    QByteArray body = m.parts[0].body;
    body.chop(2);
    // Two attachments: two blanks and a line break stand before the text.
    QCOMPARE(test::ParsedMessage::unquote(body), QByteArray("  \r\nSee the pages.\r\n.\r\nBye"));
    QCOMPARE(QByteArray::fromBase64(m.parts[1].body), Files::bytes(files.page));
    QCOMPARE(m.parts[1].headers.value("content-type"), QByteArray("image/jpeg; name=\"1.jpg\""));
    QCOMPARE(QByteArray::fromBase64(m.parts[2].body), Files::bytes(files.letter));
    QCOMPARE(m.parts[2].headers.value("content-type"),
             QByteArray("application/pdf; name=\"letter.pdf\""));
}

} // namespace

class TestMailSender : public QObject
{
    Q_OBJECT
private slots:
    // The one message text goes out byte for byte the same by either route.
    void bothRoutesSendTheSameBytes()
    {
        Files files;
        MailMessage m;
        m.from = "me@example.org";
        m.to = "you@example.org";
        m.subject = "Both ways";
        m.body = ".starts with a dot\r\n.\r\nand a lone dot above";
        m.attachments << files.page << files.letter;
        const QByteArray message = MimeMessage::build(m, nullptr);

        test::SmtpSink sink;
        SmtpTransport smtp(test::smtpTo(sink.port()));
        QVERIFY(!sendOffThread(smtp, message, m.from, m.recipients()));
        QCOMPARE(sink.mailFrom, QString("me@example.org"));
        QCOMPARE(sink.recipients, QStringList{"you@example.org"});
        QCOMPARE(sink.messages.size(), 1);
        QCOMPARE(sink.messages[0], message);

        test::SendmailStandIn sendmail;
        SendmailTransport local(sendmail.program);
        QVERIFY(!sendOffThread(local, message, m.from, m.recipients()));
        QCOMPARE(sendmail.arguments(), (QStringList{"-t", "-i"}));
        QCOMPARE(sendmail.message(), message);
    }

    // A message with two attachments, to the sink or to the stand-in for sendmail.
    void send_data()
    {
        QTest::addColumn<bool>("smtp");
        QTest::addColumn<QString>("body");
        test::row("SMTP", true, "See the pages.\n.\nBye");
        test::row("sendmail", false, "See the pages.\r\n.\r\nBye");
    }
    void send()
    {
        QFETCH(bool, smtp);
        QFETCH(QString, body);
        Files files;
        test::SmtpSink sink;
        test::SendmailStandIn sendmail;
        test::ScriptedPrompter prompter;
        prompter.expect("Message sent.");
        QVERIFY(MailSender(prompter).send(
            smtp ? test::smtpTo(sink.port()) : test::sendmailAt(sendmail.program),
            "you@example.org", "Two pages", body, files.page + "|" + files.letter + "|"));
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        QCOMPARE(sink.messages.size(), smtp ? 1 : 0);
        QCOMPARE(sendmail.arguments(), (smtp ? QStringList() : QStringList{"-t", "-i"}));
        checkMessage(smtp ? sink.messages[0] : sendmail.message(), files);
    }

    void failures_data()
    {
        QTest::addColumn<QString>("route");
        QTest::addColumn<QString>("message"); // a regular expression; "" for none at all
        test::row("server refuses the connection", "refused",
                  "^SendEmailNTS: Error  #7 .*(onnect|refused).*");
        test::row("server refuses the recipient", "recipient", "^SendEmailNTS: Error  #55 .*554.*");
        test::row("no sendmail", "no sendmail",
                  "^SendEmail: Error  #2 The mail program '/nonexistent/sendmail' was not found\\. "
                  "Set its path \\(SendmailPath\\) in File/Email Settings\\.$");
        test::row("sendmail fails", "sendmail fails",
                  "^SendEmail: Error  #75 The mail program '.*' ended with exit code 75: queue is "
                  "full$");
        test::row("attachment gone", "attachment gone",
                  "^SendEmailNTS: Error  #53 File not found: '/nonexistent/x.jpg'$");
        test::row("no mail system: nothing said", "none", "");
    }
    void failures()
    {
        QFETCH(QString, route);
        QFETCH(QString, message);
        test::SmtpSink sink;
        test::SendmailStandIn failing(75, "queue is full");
        MailSettings settings = test::smtpTo(sink.port());
        QString attachments;
        if (route == "refused") {
            // A port where nobody listens any more.
            QTcpServer gone;
            QVERIFY(gone.listen(QHostAddress::LocalHost, 0));
            settings.smtpPort = gone.serverPort();
            gone.close();
        } else if (route == "recipient") {
            sink.refuseRecipient("you@example.org");
        } else if (route == "no sendmail") {
            settings = test::sendmailAt("/nonexistent/sendmail");
        } else if (route == "sendmail fails") {
            settings = test::sendmailAt(failing.program);
        } else if (route == "none") {
            settings = MailSettings();
        } else {
            attachments = "/nonexistent/x.jpg";
        }
        test::ScriptedPrompter prompter;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(
            !MailSender(prompter).send(settings, "you@example.org", "Hello", "Body", attachments));
        QVERIFY(clock.elapsed() < 10000);
        QCOMPARE(prompter.seen().size(), message.isEmpty() ? 0 : 1);
        if (!message.isEmpty())
            QVERIFY2(QRegularExpression(message).match(prompter.seen()[0]).hasMatch(),
                     qPrintable(prompter.seen()[0]));
        QVERIFY(sink.messages.isEmpty());
    }

    void smtpAddresses_data()
    {
        QTest::addColumn<QString>("server");
        QTest::addColumn<int>("port");
        QTest::addColumn<QString>("security");
        QTest::addColumn<QString>("url");
        test::row("plain", "mail.example.org", 25, "none", "smtp://mail.example.org:25");
        test::row("starttls", "mail.example.org", 587, "starttls", "smtp://mail.example.org:587");
        test::row("tls", "mail.example.org", 465, "tls", "smtps://mail.example.org:465");
        test::row("ipv6", "::1", 25, "none", "smtp://[::1]:25");
        test::row("no server named", "", 25, "none", "smtp://localhost:25");
    }
    void smtpAddresses()
    {
        QFETCH(QString, server);
        QFETCH(int, port);
        QFETCH(QString, security);
        QFETCH(QString, url);
        MailSettings m;
        m.smtpServer = server;
        m.smtpPort = port;
        m.smtpSecurity = security;
        QCOMPARE(SmtpTransport(m).url(), url);
    }
};

QMR_TEST(TestMailSender)
#include "testmailsender.moc"
