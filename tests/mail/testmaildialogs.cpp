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

#include "core/progress.h"
#include "core/viewsettings.h"
#include "mail/emailsettingsdialog.h"
#include "mail/mailcommands.h"
#include "mail/sendemaildialog.h"
#include "mailharness.h"
#include "smtpsink.h"
#include "store/schema.h"
#include "store/session.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
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

struct Pages
{
    QTemporaryDir dir;
    QString one = dir.filePath("1.jpg");
    QString two = dir.filePath("2.jpg");
    Pages()
    {
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::gray);
        image.save(one, "JPG");
        image.save(two, "JPG");
    }
};

} // namespace

class TestMailDialogs : public QObject
{
    Q_OBJECT
private slots:
    void sendDialogWithoutAMailSystem()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        home.settings().set(keys::LastSendTo, "earlier@example.org");
        SendEmailDialog dialog(home.settings(), prompter, "/p/1.jpg", "/p/1.jpg|/p/2.jpg|");
        dialog.show();
        QCOMPARE(control<QLineEdit>(&dialog, "txtSendTo")->text(), QString("earlier@example.org"));
        control<QLineEdit>(&dialog, "txtSendTo")->setText("new@example.org");
        prompter.expect(kNoSystem);
        dialog.send();
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        // The address is kept before the check, and the dialog stays.
        QCOMPARE(home.settings().get(keys::LastSendTo), QString("new@example.org"));
        QVERIFY(dialog.isVisible());
    }

    void sendDialogAttachments_data()
    {
        QTest::addColumn<bool>("onlyThisPage");
        QTest::addColumn<int>("parts");
        QTest::addColumn<QByteArray>("room");
        QTest::newRow("all pages of the document") << false << 3 << QByteArray("  \r\n");
        QTest::newRow("only this page") << true << 2 << QByteArray(" \r\n");
    }
    void sendDialogAttachments()
    {
        QFETCH(bool, onlyThisPage);
        QFETCH(int, parts);
        QFETCH(QByteArray, room);
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::SmtpSink sink;
        test::smtpTo(sink.port()).write(home.settings());
        Pages pages;
        SendEmailDialog dialog(home.settings(), prompter, pages.two,
                               pages.one + "|" + pages.two + "|");
        dialog.show();
        QVERIFY(control<QRadioButton>(&dialog, "optSend0")->isChecked());
        if (onlyThisPage)
            control<QRadioButton>(&dialog, "optSend1")->setChecked(true);
        QCOMPARE(dialog.attachments(),
                 onlyThisPage ? pages.two : pages.one + "|" + pages.two + "|");
        control<QLineEdit>(&dialog, "txtSendTo")->setText("you@example.org");
        control<QLineEdit>(&dialog, "txtSubject")->setText("Pages");
        control<QPlainTextEdit>(&dialog, "txtBody")->setPlainText("Here.");
        prompter.expect("Message sent.");
        dialog.send();
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        QVERIFY(dialog.isVisible());
        QCOMPARE(sink.messages.size(), 1);
        const test::ParsedMessage m(sink.messages[0]);
        QCOMPARE(m.parts.size(), parts);
        QVERIFY(test::ParsedMessage::unquote(m.parts[0].body).startsWith(room + "Here."));
        QCOMPARE(m.parts.last().headers.value("content-type"),
                 QByteArray("image/jpeg; name=\"2.jpg\""));
    }

    // An address that holds a line break would let its rest become a command of the server or
    // a header of its own; it is refused before anything goes out, by either route.
    void addressWithALineBreakIsRefused_data()
    {
        QTest::addColumn<QString>("route");
        QTest::addColumn<QString>("sendTo");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("message");
        const QString injected = "you@example.org>\r\nRCPT TO:<evil@example.org";
        const QString headerInjected = "you@example.org\r\nBcc: evil@example.org";
        const QString inSendTo = "The address in 'Send to' holds a line break or another "
                                 "control character.";
        const QString inSender = "The address in 'Your email address' of File/Email Settings "
                                 "holds a line break or another control character.";
        QTest::newRow("SMTP, Send to") << "smtp" << injected << "me@example.org" << inSendTo;
        QTest::newRow("SMTP, sender") << "smtp"
                                      << "you@example.org"
                                      << "me@example.org>\r\nRCPT TO:<evil@example.org" << inSender;
        QTest::newRow("SMTP, another control character") << "smtp"
                                                         << "you@example.org\x01evil@example.org"
                                                         << "me@example.org" << inSendTo;
        QTest::newRow("sendmail, Send to")
            << "sendmail" << headerInjected << "me@example.org" << inSendTo;
        QTest::newRow("sendmail, sender") << "sendmail"
                                          << "you@example.org"
                                          << "me@example.org\nBcc: evil@example.org" << inSender;
    }
    void addressWithALineBreakIsRefused()
    {
        QFETCH(QString, route);
        QFETCH(QString, sendTo);
        QFETCH(QString, from);
        QFETCH(QString, message);
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::SmtpSink sink;
        test::SendmailStandIn sendmail;
        (route == "smtp" ? test::smtpTo(sink.port(), from)
                         : test::sendmailAt(sendmail.program, from))
            .write(home.settings());
        SendEmailDialog dialog(home.settings(), prompter, "", "");
        dialog.show();
        control<QLineEdit>(&dialog, "txtSendTo")->setText(sendTo);
        prompter.expect(message);
        dialog.send();
        QVERIFY2(sink.recipients.isEmpty(), qPrintable(sink.recipients.join(" | ")));
        QVERIFY(sink.messages.isEmpty());
        QVERIFY2(sendmail.message().isEmpty(), sendmail.message().constData());
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        QVERIFY(dialog.isVisible());
    }

    void emailPagesOfADocument()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        SilentProgress progress;
        qint32 doc = -1, first = -1, second = -1;
        {
            test::FixtureStore store(home.home());
            doc = store.document(store.folder(store.drawer(store.cabinet("C"), "D"), "F"), "Doc");
            second = store.page(doc, 2, QSize(40, 40));
            first = store.page(doc, 1, QSize(40, 40));
        }
        Session session(home.home(), home.settings());
        StoreSchema::openDatabase(session.db(), home.home());
        ViewSettings view(home.settings());
        const CommandContext context{session, prompter, choosers, progress, view};

        prompter.expect(kNoSystem);
        SendEmailDialog::emailPages(context, doc, "/p/x.jpg", nullptr);
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));

        home.settings().set(keys::EmailSystem, "MAPI");
        QString seen;
        QTimer::singleShot(0, [&] {
            if (auto* dialog = qobject_cast<SendEmailDialog*>(QApplication::activeModalWidget())) {
                seen = dialog->attachments();
                control<QRadioButton>(dialog, "optSend1")->setChecked(true);
                seen += "#" + dialog->attachments();
                dialog->reject();
            }
        });
        SendEmailDialog::emailPages(context, doc, "/p/x.jpg", nullptr);
        // In page order, each ended by the mark.
        QCOMPARE(seen, session.paths().computedPagePath(first) + "|" +
                           session.paths().computedPagePath(second) + "|#/p/x.jpg");
    }

    void settingsDialogLoadsAndSaves_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("index");
        QTest::newRow("none") << "" << 0;
        QTest::newRow("MAPI") << "MAPI" << 1;
        QTest::newRow("CDONTS") << "CDONTS" << 2;
        QTest::newRow("anything else") << "SMTP" << 0;
    }
    void settingsDialogLoadsAndSaves()
    {
        QFETCH(QString, stored);
        QFETCH(int, index);
        test::TestHome home;
        test::ScriptedPrompter prompter;
        home.settings().set(keys::EmailSystem, stored);
        home.settings().set(keys::EmailAddress, "me@example.org");
        EmailSettingsDialog dialog(home.settings(), prompter);
        QCOMPARE(control<QComboBox>(&dialog, "cboEmail")->currentIndex(), index);
        QCOMPARE(control<QComboBox>(&dialog, "cboEmail")->count(), 3);
        QCOMPARE(control<QComboBox>(&dialog, "cboEmail")->itemText(0), QString("(none)"));
        QCOMPARE(control<QLineEdit>(&dialog, "txtEmail")->text(), QString("me@example.org"));
        QCOMPARE(control<QLineEdit>(&dialog, "txtSmtpServer")->text(), QString("localhost"));
        QCOMPARE(control<QSpinBox>(&dialog, "spnSmtpPort")->value(), 25);
        QCOMPARE(control<QLineEdit>(&dialog, "txtSendmailPath")->text(),
                 QString("/usr/sbin/sendmail"));

        control<QComboBox>(&dialog, "cboEmail")->setCurrentIndex((index + 1) % 3);
        control<QLineEdit>(&dialog, "txtEmail")->setText("other@example.org");
        control<QLineEdit>(&dialog, "txtSmtpServer")->setText("smtp.example.org");
        control<QSpinBox>(&dialog, "spnSmtpPort")->setValue(587);
        control<QComboBox>(&dialog, "cboSmtpSecurity")->setCurrentIndex(1);
        control<QLineEdit>(&dialog, "txtSmtpUser")->setText("me");
        control<QLineEdit>(&dialog, "txtSmtpPassword")->setText("secret");
        dialog.save();
        Settings& s = home.reopenSettings();
        QCOMPARE(s.get(keys::EmailSystem), QStringList({"", "MAPI", "CDONTS"})[(index + 1) % 3]);
        QCOMPARE(s.get(keys::EmailAddress), QString("other@example.org"));
        QCOMPARE(s.get(keys::SmtpServer), QString("smtp.example.org"));
        QCOMPARE(s.get(keys::SmtpPort), QString("587"));
        QCOMPARE(s.get(keys::SmtpSecurity), QString("starttls"));
        QCOMPARE(s.get(keys::SmtpUser), QString("me"));
        QCOMPARE(s.get(keys::SmtpPassword), QString("secret"));
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

    void settingsDialogTest()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::SmtpSink sink;
        // Saved: no system. Shown: CDONTS to the sink. The test goes by what is shown.
        test::smtpTo(sink.port()).write(home.settings());
        home.settings().set(keys::EmailSystem, "");
        EmailSettingsDialog dialog(home.settings(), prompter);
        prompter.expect("No email system is selected.");
        dialog.sendTest();
        control<QComboBox>(&dialog, "cboEmail")->setCurrentIndex(2);
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
        QCOMPARE(home.settings().get(keys::EmailSystem), QString());
    }

    void menuEntry()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        SilentProgress progress;
        test::FixtureStore(home.home()).close();
        Session session(home.home(), home.settings());
        ViewSettings view(home.settings());
        CommandTable commands;
        const CommandContext context{session, prompter, choosers, progress, view};
        MailCommands(context).addTo(commands);
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
};

QMR_TEST(TestMailDialogs)
#include "testmaildialogs.moc"
