#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class SendEmailDialog;
}

namespace qmr {

struct CommandContext;
class Prompter;
class Settings;

// frmSendEmail: a page, or all pages of its document, mailed to an address. The dialog stays
// open after a send, whatever came of it, until it is closed.
class SendEmailDialog : public QDialog
{
    Q_OBJECT
public:
    // `pagePath`: the page shown; `documentPaths`: every page of its document, each ended
    // by "|".
    SendEmailDialog(Settings& settings, Prompter& prompter, const QString& pagePath,
                    const QString& documentPaths, QWidget* parent = nullptr);
    ~SendEmailDialog() override;

    // cmdEmail of the viewer: says so when no mail system is set, else lists the paths of
    // the document's pages in page order and shows the dialog modally.
    static void emailPages(const CommandContext& context, qint32 documentId,
                           const QString& pagePath, QWidget* parent);

    // cmdSend: keeps the address, checks the mail system, sends the chosen attachments.
    void send();
    // What a send attaches now.
    QString attachments() const;

private:
    std::unique_ptr<Ui::SendEmailDialog> m_ui;
    Settings& m_settings;
    Prompter& m_prompter;
    QString m_pagePath;
    QString m_documentPaths;
};

} // namespace qmr
