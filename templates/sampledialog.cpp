#include "templates/sampledialog.h"

#include <QListWidget>
#include <QPushButton>

#include "core/choosers.h"
#include "core/prompter.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "store/storeerror.h"
#include "templates/samplecabinets.h"
#include "ui_sampledialog.h"

namespace qmr {

SampleDialog::SampleDialog(SampleCabinets& samples, Prompter& prompter, Choosers& choosers,
                           QWidget* parent)
    : QDialog(parent), m_samples(samples), m_prompter(prompter), m_choosers(choosers),
      m_ui(std::make_unique<Ui::SampleDialog>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    m_list = m_ui->lstType;
    m_list->addItems(m_samples.sampleNames());
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
    connect(m_ui->cmdCreate, &QPushButton::clicked, this, &SampleDialog::cmdCreate);
    connect(m_ui->cmdEdit, &QPushButton::clicked, this, &SampleDialog::cmdEdit);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &SampleDialog::cmdCreate);
    resize(400, 300);
}

SampleDialog::~SampleDialog() = default;

void SampleDialog::cmdCreate()
{
    const QListWidgetItem* item = m_list->currentItem();
    const QString name = item ? item->text() : QString();
    if (name.isEmpty()) {
        m_prompter.tell(tr("Please select a sample cabinet to create."));
        return;
    }
    try {
        if (ItemStore(m_samples.db()).cabinetNameExists(name)) {
            m_prompter.tell(QStringLiteral("A cabinet named '%1' already exists.").arg(name));
            m_list->setFocus();
            return;
        }
        m_samples.createSampleCabinet(name);
    } catch (const StoreError& e) {
        m_prompter.tell(e.message());
        return;
    }
    const QString unused = m_samples.unusedLinesMessage(name);
    if (!unused.isEmpty())
        m_prompter.tell(unused);
    accept();
}

void SampleDialog::cmdEdit()
{
    if (const std::optional<QString> failure = m_choosers.openFile(m_samples.filePath()))
        m_prompter.tell(tr("Error # ") + *failure);
    accept();
}

} // namespace qmr
