#include <QElapsedTimer>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "mail/mailsender.h"
#include "mail/smtptransport.h"
#include "mailharness.h"
#include "smtpsink.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

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
        f.write("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n1 0 obj\n<<>>\nendobj\n");
    }
    static QByteArray bytes(const QString& path)
    {
        QFile f(path);
        f.open(QIODevice::ReadOnly);
        return f.readAll();
    }
};

} // namespace

class TestMailSender : public QObject
{
    Q_OBJECT
private slots:
    // A message with two attachments, to the sink or to the stand-in for sendmail, arrives as
    // it was written. Its lone dot and the line that starts with one would end the message or
    // lose a dot on the way unless the transport guards them.
    void send_data()
    {
        test::columns<bool, QString>({"smtp", "body"});
        test::row("SMTP", true, "See the pages.\n.\n..Bye");
        test::row("sendmail", false, "See the pages.\r\n.\r\n..Bye");
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
        QCOMPARE(sink.mailFrom, smtp ? QString("me@example.org") : QString());
        QCOMPARE(sink.recipients, smtp ? QStringList{"you@example.org"} : QStringList());
        QCOMPARE(sendmail.arguments(), (smtp ? QStringList() : QStringList{"-t", "-i"}));
        const test::ParsedMessage m(smtp ? sink.messages[0] : sendmail.message());
        QCOMPARE(m.headers.value("from"), QByteArray("me@example.org"));
        QCOMPARE(m.headers.value("to"), QByteArray("you@example.org"));
        QCOMPARE(m.headers.value("subject"), QByteArray("Two pages"));
        QVERIFY(!m.headers.value("date").isEmpty());
        QVERIFY(m.headers.value("message-id").endsWith("@example.org>"));
        QCOMPARE(m.parts.size(), 3);
        // Two attachments: two blanks and a line break stand before the text.
        QCOMPARE(test::ParsedMessage::unquote(m.parts[0].body.chopped(2)),
                 QByteArray("  \r\nSee the pages.\r\n.\r\n..Bye"));
        QCOMPARE(QByteArray::fromBase64(m.parts[1].body), Files::bytes(files.page));
        QCOMPARE(m.parts[1].headers.value("content-type"),
                 QByteArray("image/jpeg; name=\"1.jpg\""));
        QCOMPARE(QByteArray::fromBase64(m.parts[2].body), Files::bytes(files.letter));
        QCOMPARE(m.parts[2].headers.value("content-type"),
                 QByteArray("application/pdf; name=\"letter.pdf\""));
    }

    void failures_data()
    {
        // The message is a regular expression; "" for none at all.
        test::columns<QString, QString>({"route", "message"});
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
        test::columns<QString, int, QString, QString>({"server", "port", "security", "url"});
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
