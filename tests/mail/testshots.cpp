#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>

#include "core/settings.h"
#include "mail/emailsettingsdialog.h"
#include "mail/sendemaildialog.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/shots.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

class Shots : public QObject
{
    Q_OBJECT
private slots:
    void sendEmail()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        home.settings().set(keys::LastSendTo, "accounts@example.org");
        SendEmailDialog dialog(home.settings(), prompter, "/p/1.jpg", "/p/1.jpg|/p/2.jpg|");
        dialog.findChild<QLineEdit*>("txtSubject")->setText("March statement");
        dialog.findChild<QPlainTextEdit*>("txtBody")->setPlainText(
            "Hello,\n\nhere are the pages of the March statement.\n\nRegards");
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        test::saveShot(&dialog, "dialog-send-email");
    }

    void emailSettings()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        home.settings().set(keys::EmailSystem, "CDONTS");
        home.settings().set(keys::EmailAddress, "me@example.org");
        home.settings().set(keys::SmtpServer, "smtp.example.org");
        home.settings().set(keys::SmtpPort, "587");
        home.settings().set(keys::SmtpSecurity, "starttls");
        home.settings().set(keys::SmtpUser, "me");
        home.settings().set(keys::SmtpPassword, "secret");
        EmailSettingsDialog dialog(home.settings(), prompter);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        test::saveShot(&dialog, "dialog-email-settings");
        dialog.findChild<QComboBox*>("cboEmail")->setCurrentIndex(1);
        test::saveShot(&dialog, "dialog-email-settings-mapi");
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
