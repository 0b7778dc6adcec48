#include "dialogs/pagenumberdialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace qmr {

PageNumberDialog::PageNumberDialog(int present, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmPageNumber"));
    setWindowTitle(QStringLiteral("Page Number"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    auto* layout = new QVBoxLayout(this);
    auto* row = new QHBoxLayout();
    auto* label = new QLabel(QStringLiteral("New Page Number:"), this);
    label->setObjectName(QStringLiteral("lblPageNumber"));
    m_number = new QLineEdit(QString::number(present), this);
    m_number->setObjectName(QStringLiteral("txtPageNumber"));
    m_number->selectAll();
    label->setBuddy(m_number);
    row->addWidget(label);
    row->addWidget(m_number);
    layout->addLayout(row);
    auto* buttons = new QHBoxLayout();
    buttons->addStretch(1);
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    connect(ok, &QPushButton::clicked, this, [this] {
        bool isNumber = false;
        const int value = m_number->text().trimmed().toInt(&isNumber);
        m_reply = isNumber ? value : -1;
        accept();
    });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

} // namespace qmr
