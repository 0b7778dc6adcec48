#include "mail/emailsettingsdialog.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <QPushButton>

#include "core/prompter.h"
#include "core/settings.h"
#include "mail/mailsender.h"
#include "mail/smtppassword.h"
#include "ui_emailsettingsdialog.h"

namespace qmr {

namespace {

const QStringList kSecurity = {QStringLiteral("none"), QStringLiteral("starttls"),
                               QStringLiteral("tls")};

QString placeText(SmtpPassword::Place place)
{
    return place == SmtpPassword::Place::Keyring
               ? QCoreApplication::translate("qmr::EmailSettingsDialog",
                                             "The password is kept in the desktop's keyring.")
               : QCoreApplication::translate(
                     "qmr::EmailSettingsDialog",
                     "No keyring is running: the password is kept in the settings "
                     "file, readable by you alone.");
}

} // namespace

EmailSettingsDialog::EmailSettingsDialog(Settings& settings, Prompter& prompter, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::EmailSettingsDialog>()), m_settings(settings),
      m_prompter(prompter)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    const MailSettings m = MailSettings::read(settings);
    m_ui->cboEmail->setCurrentIndex(int(m.system));
    m_ui->txtEmail->setText(settings.get(keys::EmailAddress));
    m_ui->txtSmtpServer->setText(m.smtpServer);
    m_ui->spnSmtpPort->setValue(m.smtpPort);
    m_ui->cboSmtpSecurity->setCurrentIndex(qMax(0, int(kSecurity.indexOf(m.smtpSecurity))));
    m_ui->txtSmtpUser->setText(m.smtpUser);
    const SmtpPassword::Kept password = SmtpPassword(settings).read();
    m_ui->txtSmtpPassword->setText(password.password);
    m_ui->lblPasswordPlace->setText(placeText(password.place));
    m_ui->txtSendmailPath->setText(m.sendmailPath);
    showSystemFields();
    connect(m_ui->cboEmail, &QComboBox::currentIndexChanged, this,
            &EmailSettingsDialog::showSystemFields);
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &EmailSettingsDialog::save);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_ui->cmdTest, &QPushButton::clicked, this, &EmailSettingsDialog::sendTest);
}

EmailSettingsDialog::~EmailSettingsDialog() = default;

void EmailSettingsDialog::showSystemFields()
{
    const int system = m_ui->cboEmail->currentIndex();
    m_ui->fraSendmail->setEnabled(system == int(MailSystem::Mapi));
    m_ui->fraSmtp->setEnabled(system == int(MailSystem::Cdonts));
}

MailSettings EmailSettingsDialog::shown() const
{
    MailSettings m;
    const int index = m_ui->cboEmail->currentIndex();
    m.system = index == 1 ? MailSystem::Mapi : index == 2 ? MailSystem::Cdonts : MailSystem::None;
    m.fromAddress = m_ui->txtEmail->text();
    m.smtpServer = m_ui->txtSmtpServer->text().trimmed();
    m.smtpPort = m_ui->spnSmtpPort->value();
    m.smtpSecurity = kSecurity.value(m_ui->cboSmtpSecurity->currentIndex(), kSecurity.first());
    m.smtpUser = m_ui->txtSmtpUser->text();
    m.smtpPassword = m_ui->txtSmtpPassword->text();
    m.sendmailPath = m_ui->txtSendmailPath->text().trimmed();
    return m;
}

void EmailSettingsDialog::save()
{
    shown().write(m_settings);
    accept();
}

void EmailSettingsDialog::sendTest()
{
    MailSettings m = shown();
    if (m.system == MailSystem::None) {
        m_prompter.tell(tr("No email system is selected."));
        return;
    }
    m.fromAddress = m.fromAddress.trimmed();
    m_ui->cmdTest->setEnabled(false);
    MailSender(m_prompter, this)
        .recipientField(MailAddress::testAddressField())
        .send(m, m_ui->txtEmail->text(), tr("Test Email"),
              tr("This is a test message from ") + Prompter::caption() +
                  QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat),
              QString());
    m_ui->cmdTest->setEnabled(true);
}

} // namespace qmr
