#include "dialogs/pagenumberdialog.h"

#include "ui_pagenumberdialog.h"

namespace qmr {

PageNumberDialog::PageNumberDialog(int present, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::PageNumberDialog>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    m_ui->txtPageNumber->setText(QString::number(present));
    m_ui->txtPageNumber->selectAll();
    connect(m_ui->cmdOK, &QPushButton::clicked, this, [this] {
        bool isNumber = false;
        const int value = m_ui->txtPageNumber->text().trimmed().toInt(&isNumber);
        m_reply = isNumber ? value : -1;
        accept();
    });
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

PageNumberDialog::~PageNumberDialog() = default;

} // namespace qmr
