#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class PrintSettingsDialog;
}

namespace qmr {

class Prompter;
class Settings;

// frmPrintSettings: the two percentages that scale printed pages across and down.
class PrintSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    PrintSettingsDialog(Settings& settings, Prompter& prompter, QWidget* parent = nullptr);
    ~PrintSettingsDialog() override;

    // OK: the width is checked, then the height; both are saved, width first, only when both
    // lie within 10 to 200. False (the window stays) after a message.
    bool cmdOK();

private:
    std::unique_ptr<Ui::PrintSettingsDialog> m_ui;
    Settings& m_settings;
    Prompter& m_prompter;
};

} // namespace qmr
