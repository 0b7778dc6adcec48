#include "exchange/filetypesdialog.h"

#include <QListWidget>
#include <QPushButton>

#include "ui_filetypesdialog.h"

namespace qmr {

FileTypesDialog::FileTypesDialog(const QStringList& types, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::FileTypesDialog>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    m_ui->lstFileTypes->addItems(types);
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &FileTypesDialog::cmdOK);
    connect(m_ui->cmdAll, &QPushButton::clicked, this, &FileTypesDialog::cmdAll);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &FileTypesDialog::cmdCancel);
    resize(420, 340);
}

FileTypesDialog::~FileTypesDialog() = default;

QListWidget* FileTypesDialog::list() const
{
    return m_ui->lstFileTypes;
}

void FileTypesDialog::cmdOK()
{
    QStringList chosen;
    for (int i = 0; i < m_ui->lstFileTypes->count(); ++i)
        if (m_ui->lstFileTypes->item(i)->isSelected())
            chosen << m_ui->lstFileTypes->item(i)->text();
    m_filter = FileTypeFilter::of(chosen);
    accept();
}

void FileTypesDialog::cmdAll()
{
    m_filter = FileTypeFilter();
    accept();
}

void FileTypesDialog::cmdCancel()
{
    m_filter.reset();
    reject();
}

} // namespace qmr
