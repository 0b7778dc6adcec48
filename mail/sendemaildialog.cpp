#include "mail/sendemaildialog.h"

#include <QCoreApplication>
#include <QPushButton>

#include "core/prompter.h"
#include "mail/mailsender.h"
#include "mail/mailsettings.h"
#include "store/commandcontext.h"
#include "store/commandguard.h"
#include "store/session.h"
#include "ui_sendemaildialog.h"

namespace qmr {

namespace {

QString noSystem()
{
    return QCoreApplication::translate(
        "qmr::SendEmailDialog",
        "No Email system setup.  Goto File/Email Settings.. to setup your email.");
}

} // namespace

SendEmailDialog::SendEmailDialog(Settings& settings, Prompter& prompter, const QString& pagePath,
                                 const QString& documentPaths, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::SendEmailDialog>()), m_settings(settings),
      m_prompter(prompter), m_pagePath(pagePath), m_documentPaths(documentPaths)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    m_ui->txtSendTo->setText(m_settings.get(keys::LastSendTo));
    connect(m_ui->cmdSend, &QPushButton::clicked, this, &SendEmailDialog::send);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

SendEmailDialog::~SendEmailDialog() = default;

QString SendEmailDialog::attachments() const
{
    return m_ui->optSend1->isChecked() ? m_pagePath : m_documentPaths;
}

void SendEmailDialog::send()
{
    m_settings.set(keys::LastSendTo, m_ui->txtSendTo->text());
    if (MailSettings::read(m_settings).system == MailSystem::None) {
        m_prompter.tell(noSystem());
        return;
    }
    const MailSettings mail = MailSettings::forSending(m_settings);
    m_ui->cmdSend->setEnabled(false);
    MailSender(m_prompter, this)
        .send(mail, m_ui->txtSendTo->text(), m_ui->txtSubject->text(), m_ui->txtBody->toPlainText(),
              attachments());
    m_ui->cmdSend->setEnabled(true);
}

void SendEmailDialog::emailPages(const CommandContext& context, qint32 documentId,
                                 const QString& pagePath, QWidget* parent)
{
    Session& session = context.session;
    if (MailSettings::read(session.settings()).system == MailSystem::None) {
        context.prompter.tell(noSystem());
        return;
    }
    QString paths;
    const bool read = guarded(context.prompter, [&] {
        for (const PageRow& row : session.pages().pages(documentId))
            paths += session.paths().pagePath(row.id, row.filename) + QLatin1Char('|');
    });
    if (!read)
        return;
    SendEmailDialog dialog(session.settings(), context.prompter, pagePath, paths, parent);
    dialog.exec();
}

} // namespace qmr
