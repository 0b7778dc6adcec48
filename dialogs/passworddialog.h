#pragma once

#include <QDialog>
#include <memory>
#include <optional>

namespace Ui {
class PasswordDialog;
}

namespace qmr {

// frmPassword: asks for a cabinet's password. Closing the window counts as Cancel.
class PasswordDialog : public QDialog
{
    Q_OBJECT
public:
    explicit PasswordDialog(QWidget* parent = nullptr);
    ~PasswordDialog() override;

    // The typed text after OK; nothing after Cancel, Esc or the window's close box.
    std::optional<QString> reply() const { return m_reply; }

private:
    std::unique_ptr<Ui::PasswordDialog> m_ui;
    std::optional<QString> m_reply;
};

} // namespace qmr
