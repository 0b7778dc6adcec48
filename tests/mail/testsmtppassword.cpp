#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QLocalServer>
#include <QTemporaryDir>
#include <QTest>

#include "core/settings.h"
#include "mail/emailsettingsdialog.h"
#include "mail/keyring.h"
#include "mail/sendemaildialog.h"
#include "mailharness.h"
#include "privatekeyring.h"
#include "smtpsink.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// Where the SMTP password goes with a keyring, with no bus at all, and with a bus that never
// answers. Each case runs in a process of its own, which meets the bus it is given from its
// first call on.
class TestSmtpPassword : public QObject
{
    Q_OBJECT
private slots:
    void passwordPlace_data()
    {
        test::columns<QString, QString>({"bus", "place"});
        test::row("keyring running", "keyring", "keyring");
        test::row("no bus", "none", "file");
        test::row("a bus that never answers", "silent", "file");
    }
    void passwordPlace()
    {
        const auto [bus, place] = test::fetch<QString, QString>("bus", "place");
        QTemporaryDir dir;
        test::PrivateKeyring keyring(dir.path());
        QLocalServer silent; // takes connections and never says a word
        QString address = "unix:path=" + dir.filePath("nobody");
        if (bus == "keyring") {
            const QString failure = keyring.start();
            QVERIFY2(failure.isEmpty(), qPrintable(failure));
            address = keyring.address();
        } else if (bus == "silent") {
            QVERIFY(silent.listen(dir.filePath("silent")));
            address = "unix:path=" + silent.fullServerName();
        }
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("QMR_TEST_BUS", address);
        env.insert("QMR_TEST_PASSWORD_PLACE", place);
        QProcess child;
        child.setProcessEnvironment(env);
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.start(QCoreApplication::applicationFilePath(), {"--only=KeyringSession"});
        if (!child.waitForFinished(120000))
            child.kill();
        const QByteArray output = child.readAll();
        QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
                 output.constData());
    }
};

// The child of TestSmtpPassword: a password left in the settings file by an earlier run, the
// email settings dialog that shows it and saves a new one, and a send that logs in with it.
class KeyringSession : public QObject
{
    Q_OBJECT
private slots:
    void passwordPlace()
    {
        const bool keyring = qgetenv("QMR_TEST_PASSWORD_PLACE") == "keyring";
        test::TestHome home;
        test::ScriptedPrompter prompter;
        test::SmtpSink sink(60000);
        sink.offerLogin();
        MailSettings m = test::smtpTo(sink.port());
        m.smtpUser = "me";
        m.write(home.settings());
        home.settings().set(keys::SmtpPassword, "old secret");
        home.settings().sync();
        {
            QElapsedTimer clock;
            clock.start();
            EmailSettingsDialog dialog(home.settings(), prompter);
            // A keyring that does not answer costs a few seconds, never more.
            QVERIFY(clock.elapsed() < 3 * Keyring::kAnswerMs);
            QCOMPARE(dialog.findChild<QLineEdit*>("txtSmtpPassword")->text(),
                     QString("old secret"));
            QCOMPARE(dialog.findChild<QLabel*>("lblPasswordPlace")->text(),
                     keyring ? QString("The password is kept in the desktop's keyring.")
                             : QString("No keyring is running: the password is kept in the "
                                       "settings file, readable by you alone."));
            // With a keyring, the password has moved there and left the file.
            QCOMPARE(Settings(home.settingsPath()).contains("SmtpPassword"), !keyring);
            dialog.findChild<QLineEdit*>("txtSmtpPassword")->setText("new secret");
            dialog.save();
        }
        const Settings file(home.settingsPath());
        QCOMPARE(file.contains("SmtpPassword"), !keyring);
        if (!keyring)
            QCOMPARE(file.get(keys::SmtpPassword), QString("new secret"));

        // A later run finds the password where it was left and logs in with it.
        SendEmailDialog dialog(home.reopenSettings(), prompter, "", "");
        dialog.findChild<QLineEdit*>("txtSendTo")->setText("you@example.org");
        prompter.expect("Message sent.");
        dialog.send();
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        QCOMPARE(sink.loginPassword, QString("new secret"));
    }
};

QMR_TEST(TestSmtpPassword)
QMR_TEST_ON_DEMAND(KeyringSession)
#include "testsmtppassword.moc"
