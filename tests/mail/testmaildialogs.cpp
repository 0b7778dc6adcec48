#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "mail/emailsettingsdialog.h"
#include "mail/mailcommands.h"
#include "mail/sendemaildialog.h"
#include "mailharness.h"
#include "smtpsink.h"
#include "tests/support/commandharness.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

const QString kNoSystem =
    QStringLiteral("No Email system setup.  Goto File/Email Settings.. to setup your email.");

template <class T> T* control(QWidget* w, const char* name)
{
    T* c = w->findChild<T*>(QLatin1String(name));
    if (!c)
        qWarning("no control %s", name);
    return c;
}

// A document of three pages; the one shown is the last.
struct Pages
{
    QTemporaryDir dir;
    QString page = dir.filePath("3.jpg");
    QString document; // each path ended by the mark
    Pages()
    {
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::gray);
        for (const char* name : {"1.jpg", "2.jpg", "3.jpg"}) {
            image.save(dir.filePath(name), "JPG");
            document += dir.filePath(name) + "|";
        }
    }
};

} // namespace

class TestMailDialogs : public QObject
{
    Q_OBJECT
private slots:
    // A message goes out with the pages chosen. Nothing goes out without a mail system. An
    // address that holds a line break would let its rest become a command of the server or a
    // header of its own; it is refused before anything goes out, by either route (the check
    // comes before the route is taken: one field each way).
    void send_data()
    {
        test::columns<QString, QString, QString, bool, QString, int>(
            {"route", "sendTo", "from", "onlyThisPage", "message", "parts"});
        const QString inSendTo = "The address in 'Send to' holds a line break or another "
                                 "control character.";
        const QString inSender = "The address in 'Your email address' of File/Email Settings "
                                 "holds a line break or another control character.";
        const QString me = "me@example.org", you = "you@example.org", sent = "Message sent.";
        test::row("all pages of the document", "smtp", you, me, false, sent, 4);
        test::row("only this page", "smtp", you, me, true, sent, 2);
        test::row("no mail system", "none", QString("new@example.org"), me, false, kNoSystem, 0);
        test::row("SMTP, Send to", "smtp", you + ">\r\nRCPT TO:<evil@example.org", me, false,
                  inSendTo, 0);
        test::row("SMTP, another control character", "smtp", you + "\x01evil@example.org", me,
                  false, inSendTo, 0);
        test::row("sendmail, sender", "sendmail", you, me + "\nBcc: evil@example.org", false,
                  inSender, 0);
    }
    void send()
    {
        const auto [route, sendTo, from, onlyThisPage, message, parts] =
            test::fetch<QString, QString, QString, bool, QString, int>(
                "route", "sendTo", "from", "onlyThisPage", "message", "parts");
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::SmtpSink sink;
        test::SendmailStandIn sendmail;
        if (route != "none")
            (route == "smtp" ? test::smtpTo(sink.port(), from)
                             : test::sendmailAt(sendmail.program, from))
                .write(home.settings());
        home.settings().set(keys::LastSendTo, "earlier@example.org");
        Pages pages;
        SendEmailDialog dialog(home.settings(), prompter, pages.page, pages.document);
        dialog.show();
        if (onlyThisPage)
            control<QRadioButton>(&dialog, "optSend1")->setChecked(true);
        auto* txtSendTo = control<QLineEdit>(&dialog, "txtSendTo");
        QCOMPARE(txtSendTo->text(), QString("earlier@example.org"));
        txtSendTo->setText(sendTo);
        control<QLineEdit>(&dialog, "txtSubject")->setText("Pages");
        control<QPlainTextEdit>(&dialog, "txtBody")->setPlainText("Here.");
        prompter.expect(message);
        dialog.send();
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        QVERIFY(dialog.isVisible());
        QVERIFY2(sendmail.message().isEmpty(), sendmail.message().constData());
        if (route == "none") // the address is kept before the check
            QCOMPARE(home.settings().get(keys::LastSendTo), sendTo);
        QCOMPARE(sink.messages.size(), parts ? 1 : 0);
        if (!parts) {
            QVERIFY2(sink.recipients.isEmpty(), qPrintable(sink.recipients.join(" | ")));
            return;
        }
        const test::ParsedMessage m(sink.messages[0]);
        QCOMPARE(m.parts.size(), parts);
        // A blank before the text for each attachment but the first.
        QVERIFY(test::ParsedMessage::unquote(m.parts[0].body)
                    .startsWith(QByteArray(parts - 1, ' ') + "\r\nHere."));
        QCOMPARE(m.parts.last().headers.value("content-type"),
                 QByteArray("image/jpeg; name=\"3.jpg\""));
    }

    // Email of a document's pages, and File/Email Settings, from the program's commands.
    void mailCommands()
    {
        test::CommandHarness<> h;
        qint32 doc = -1, first = -1, second = -1;
        {
            test::FixtureStore store(h.home.home());
            doc = store.document(store.folder(store.drawer(store.cabinet("C"), "D"), "F"), "Doc");
            second = store.page(doc, 2, QSize(40, 40));
            first = store.page(doc, 1, QSize(40, 40));
        }
        h.openSession();
        h.prompter.expect(kNoSystem);
        SendEmailDialog::emailPages(h.context(), doc, "/p/x.jpg", nullptr);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));

        h.home.settings().set(keys::EmailSystem, "MAPI");
        QString seen;
        QTimer::singleShot(0, [&] {
            if (auto* dialog = qobject_cast<SendEmailDialog*>(QApplication::activeModalWidget())) {
                seen = dialog->attachments();
                control<QRadioButton>(dialog, "optSend1")->setChecked(true);
                seen += "#" + dialog->attachments();
                dialog->reject();
            }
        });
        SendEmailDialog::emailPages(h.context(), doc, "/p/x.jpg", nullptr);
        // In page order, each ended by the mark.
        QCOMPARE(seen, h.session->paths().computedPagePath(first) + "|" +
                           h.session->paths().computedPagePath(second) + "|#/p/x.jpg");

        CommandTable commands;
        MailCommands(h.context()).addTo(commands);
        QVERIFY(commands.contains("mnuEmailSettings"));
        bool shown = false;
        // The dialog asks the keyring before it is shown, letting events run meanwhile.
        test::whenModal(this, [&](QWidget* modal) {
            if (auto* d = qobject_cast<EmailSettingsDialog*>(modal)) {
                shown = true;
                d->reject();
            }
        });
        commands["mnuEmailSettings"]();
        QVERIFY(shown);
    }

    // File/Email Settings shows what is stored, sends its test message with what it shows,
    // and saves what was typed.
    void settingsDialogLoadsAndSaves_data()
    {
        test::columns<QString, int>({"stored", "index"});
        test::row("none", "", 0);
        test::row("MAPI", "MAPI", 1);
        test::row("CDONTS", "CDONTS", 2);
        test::row("anything else", "SMTP", 0);
    }
    void settingsDialogLoadsAndSaves()
    {
        const auto [stored, index] = test::fetch<QString, int>("stored", "index");
        test::TestHome home;
        test::ScriptedPrompter prompter;
        home.settings().set(keys::EmailSystem, stored);
        home.settings().set(keys::EmailAddress, "me@example.org");
        EmailSettingsDialog dialog(home.settings(), prompter);
        auto* system = control<QComboBox>(&dialog, "cboEmail");
        QCOMPARE(system->currentIndex(), index);
        QCOMPARE(QStringList({system->itemText(0), QString::number(system->count())}),
                 QStringList({"(none)", "3"}));
        const std::pair<const char*, SettingKey> fields[] = {
            {"txtEmail", keys::EmailAddress},
            {"txtSmtpServer", keys::SmtpServer},
            {"txtSendmailPath", keys::SendmailPath},
            {"txtSmtpUser", keys::SmtpUser},
            {"txtSmtpPassword", keys::SmtpPassword}};
        const QStringList typed = {"other@example.org", "smtp.example.org", "/opt/sendmail", "me",
                                   "secret"};
        QStringList shown;
        for (const auto& [name, key] : fields)
            shown << control<QLineEdit>(&dialog, name)->text();
        QCOMPARE(shown, QStringList({"me@example.org", "localhost", "/usr/sbin/sendmail", "", ""}));
        QCOMPARE(control<QSpinBox>(&dialog, "spnSmtpPort")->value(), 25);

        // A test message goes by what is shown, not by what is saved.
        test::SmtpSink sink;
        system->setCurrentIndex(0);
        prompter.expect("No email system is selected.");
        dialog.sendTest();
        system->setCurrentIndex(2);
        control<QLineEdit>(&dialog, "txtSmtpServer")->setText("127.0.0.1");
        control<QSpinBox>(&dialog, "spnSmtpPort")->setValue(sink.port());
        control<QLineEdit>(&dialog, "txtEmail")->setText("tester@example.org\nBcc: x@example.org");
        prompter.expect("The address in 'Your email address' holds a line break or another "
                        "control character.");
        dialog.sendTest();
        control<QLineEdit>(&dialog, "txtEmail")->setText("tester@example.org");
        prompter.expect("Message sent.");
        dialog.sendTest();
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        QCOMPARE(sink.messages.size(), 1);
        QCOMPARE(sink.recipients, QStringList{"tester@example.org"});
        QCOMPARE(sink.mailFrom, QString("tester@example.org"));
        const test::ParsedMessage m(sink.messages[0]);
        QCOMPARE(m.headers.value("subject"), QByteArray("Test Email"));
        QVERIFY(test::ParsedMessage::unquote(m.body).startsWith(
            "This is a test message from Quillmere"));
        QCOMPARE(home.settings().get(keys::EmailSystem), stored);

        for (int i = 0; i < typed.size(); ++i)
            control<QLineEdit>(&dialog, fields[i].first)->setText(typed[i]);
        system->setCurrentIndex((index + 1) % 3);
        control<QSpinBox>(&dialog, "spnSmtpPort")->setValue(587);
        control<QComboBox>(&dialog, "cboSmtpSecurity")->setCurrentIndex(1);
        dialog.save();
        Settings& s = home.reopenSettings();
        QStringList saved;
        for (const auto& [name, key] : fields)
            saved << s.get(key);
        QCOMPARE(saved, typed);
        QCOMPARE(s.get(keys::EmailSystem), QStringList({"", "MAPI", "CDONTS"})[(index + 1) % 3]);
        QCOMPARE(s.get(keys::SmtpPort), QString("587"));
        QCOMPARE(s.get(keys::SmtpSecurity), QString("starttls"));
        // The file holds a password: its owner alone may read it, also after later writes.
        for (int pass = 0; pass < 2; ++pass) {
            const QFile::Permissions p = QFile::permissions(home.settingsPath());
            QVERIFY(p.testFlag(QFile::ReadOwner) && p.testFlag(QFile::WriteOwner));
            QCOMPARE(
                p & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther),
                QFile::Permissions());
            s.set(keys::LastNavTreeNodeKey, "CAB1");
            s.sync();
        }
    }
};

QMR_TEST(TestMailDialogs)
#include "testmaildialogs.moc"
