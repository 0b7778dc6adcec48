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

class TestMailSender : public QObject
{
    Q_OBJECT
private slots:
    // A message with two attachments, to the sink or to the stand-in for sendmail, arrives as
    // it was written (its headers and parts: TestMimeMessage). Its lone dot and the line that
    // starts with one would end the message or lose a dot on the way unless the transport
    // guards them. What fails says what and why, and nothing goes out.
    void send_data()
    {
        // The message is a regular expression; "" for none at all.
        test::columns<QString, QString>({"route", "message"});
        test::row("SMTP", "smtp", "^Message sent\\.$");
        test::row("sendmail", "sendmail", "^Message sent\\.$");
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
    void send()
    {
        const auto [route, message] = test::fetch<QString, QString>("route", "message");
        const bool sent = message.startsWith("^Message sent");
        QTemporaryDir dir;
        const QString page = dir.filePath("1.jpg"), letter = dir.filePath("letter.pdf");
        QImage image(120, 90, QImage::Format_RGB32);
        image.fill(Qt::darkYellow);
        QVERIFY(image.save(page, "JPG"));
        test::writeFile(letter, "%PDF-1.4\n%\xe2\xe3\xcf\xd3\n1 0 obj\n<<>>\nendobj\n");
        QString attachments = page + "|" + letter + "|";
        test::SmtpSink sink;
        const bool full = route == "sendmail fails";
        test::SendmailStandIn sendmail(full ? 75 : 0, full ? "queue is full" : "");
        MailSettings settings = test::smtpTo(sink.port());
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
        } else if (route.startsWith("sendmail")) {
            settings = test::sendmailAt(sendmail.program);
        } else if (route == "none") {
            settings = MailSettings();
        } else if (route == "attachment gone") {
            attachments = "/nonexistent/x.jpg";
        }
        test::ScriptedPrompter prompter;
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(MailSender(prompter).send(settings, "you@example.org", "Two pages",
                                           "See the pages.\n.\n..Bye", attachments),
                 sent);
        QVERIFY(clock.elapsed() < 10000);
        QCOMPARE(prompter.seen().size(), message.isEmpty() ? 0 : 1);
        if (!message.isEmpty())
            QVERIFY2(QRegularExpression(message).match(prompter.seen()[0]).hasMatch(),
                     qPrintable(prompter.seen()[0]));
        const bool smtp = sent && route == "smtp";
        QCOMPARE(sink.messages.size(), smtp ? 1 : 0);
        if (!sent)
            return;
        QCOMPARE(sink.mailFrom, smtp ? QString("me@example.org") : QString());
        QCOMPARE(sink.recipients, smtp ? QStringList{"you@example.org"} : QStringList());
        QCOMPARE(sendmail.arguments(), (smtp ? QStringList() : QStringList{"-t", "-i"}));
        const test::ParsedMessage m(smtp ? sink.messages[0] : sendmail.message());
        QCOMPARE(m.headers.value("to"), QByteArray("you@example.org"));
        QCOMPARE(m.parts.size(), 3);
        // Two attachments: two blanks and a line break stand before the text.
        QCOMPARE(test::ParsedMessage::unquote(m.parts[0].body.chopped(2)),
                 QByteArray("  \r\nSee the pages.\r\n.\r\n..Bye"));
        for (int i : {1, 2}) {
            QFile file(i == 1 ? page : letter);
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(QByteArray::fromBase64(m.parts[i].body), file.readAll());
        }
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
        MailSettings m;
        std::tie(m.smtpServer, m.smtpPort, m.smtpSecurity) =
            test::fetch<QString, int, QString>("server", "port", "security");
        QTEST(SmtpTransport(m).url(), "url");
    }
};

QMR_TEST(TestMailSender)
#include "testmailsender.moc"
