#include "templates/sampledialog.h"

#include "core/choosers.h"
#include "core/prompter.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "store/storeerror.h"
#include "templates/samplecabinets.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace qmr {

SampleDialog::SampleDialog(SampleCabinets& samples, Prompter& prompter, Choosers& choosers,
                           QWidget* parent)
    : QDialog(parent), m_samples(samples), m_prompter(prompter), m_choosers(choosers)
{
    setObjectName(QStringLiteral("frmSample"));
    setWindowTitle(QStringLiteral("Create Sample Cabinet"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    auto* layout = new QVBoxLayout(this);
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("lstType"));
    m_list->addItems(m_samples.sampleNames());
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
    layout->addWidget(m_list, 1);
    auto* buttons = new QHBoxLayout();
    auto* create = new QPushButton(QStringLiteral("Create Sample"), this);
    create->setObjectName(QStringLiteral("cmdCreate"));
    create->setDefault(true);
    auto* edit = new QPushButton(QStringLiteral("Edit Samples"), this);
    edit->setObjectName(QStringLiteral("cmdEdit"));
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    buttons->addWidget(create);
    buttons->addWidget(edit);
    buttons->addStretch(1);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    connect(create, &QPushButton::clicked, this, &SampleDialog::cmdCreate);
    connect(edit, &QPushButton::clicked, this, &SampleDialog::cmdEdit);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &SampleDialog::cmdCreate);
    resize(400, 300);
}

void SampleDialog::cmdCreate()
{
    const QListWidgetItem* item = m_list->currentItem();
    const QString name = item ? item->text() : QString();
    if (name.isEmpty()) {
        m_prompter.tell(QStringLiteral("Please select a sample cabinet to create."));
        return;
    }
    try {
        if (ItemStore(m_samples.db()).cabinetNameExists(name)) {
            m_prompter.tell(QStringLiteral("A cabinet named '%1' already exists.").arg(name));
            m_list->setFocus();
            return;
        }
        m_samples.CreateSampleCabinet(name);
    } catch (const StoreError& e) {
        m_prompter.tell(e.message());
        return;
    }
    accept();
}

void SampleDialog::cmdEdit()
{
    if (const std::optional<QString> failure = m_choosers.openInEditor(m_samples.filePath()))
        m_prompter.tell(QStringLiteral("Error # ") + *failure);
    accept();
}

} // namespace qmr
