#include "dialogs/passworddialog.h"

#include "ui_passworddialog.h"

namespace qmr {

PasswordDialog::PasswordDialog(QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::PasswordDialog>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    connect(m_ui->cmdOK, &QPushButton::clicked, this, [this] {
        m_reply = m_ui->txtPassword->text();
        accept();
    });
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, [this] {
        m_reply.reset();
        reject();
    });
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
}

PasswordDialog::~PasswordDialog() = default;

} // namespace qmr
