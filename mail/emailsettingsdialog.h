#pragma once

#include <QDialog>
#include <memory>

#include "mail/mailsettings.h"

namespace Ui {
class EmailSettingsDialog;
}

namespace qmr {

class Prompter;
class Settings;

// frmEmailSettings: the mail system, the sender's address, and how each system reaches the
// world (the SMTP server, the mail program). The test sends with what the dialog shows, not
// with what is saved.
class EmailSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    EmailSettingsDialog(Settings& settings, Prompter& prompter, QWidget* parent = nullptr);
    ~EmailSettingsDialog() override;

    // The settings as the dialog shows them.
    MailSettings shown() const;
    // cmdOK: saves and closes.
    void save();
    // cmdTest: a test message to the address in the dialog.
    void sendTest();

private:
    void showSystemFields();

    std::unique_ptr<Ui::EmailSettingsDialog> m_ui;
    Settings& m_settings;
    Prompter& m_prompter;
};

} // namespace qmr
