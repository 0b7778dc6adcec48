#include "exchange/exportdialog.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>

#include "core/prompter.h"
#include "core/settings.h"
#include "dialogs/pathbrowser.h"
#include "exchange/cabinetchoice.h"
#include "exchange/cabinetexporter.h"
#include "exchange/dialogprogress.h"
#include "exchange/diskfilesystem.h"
#include "exchange/promptedquestions.h"
#include "store/commandguard.h"
#include "store/session.h"
#include "ui_exportdialog.h"

namespace qmr {

ExportDialog::ExportDialog(const CommandContext& context, QWidget* parent, ExchangeFileSystem* fs)
    : QDialog(parent), m_context(context), m_ui(std::make_unique<Ui::ExportDialog>()), m_fs(fs)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    if (!m_fs) {
        m_ownFs = std::make_unique<DiskFileSystem>();
        m_fs = m_ownFs.get();
    }
    m_progress =
        new DialogProgress(m_ui->lblStatus, m_ui->shpBackground, m_ui->shpForeground, this);
    QString path = m_context.session.settings().get(keys::LastOutputPath);
    m_ui->txtOutputPath->setText(path.isEmpty() ? QDir::homePath() : path);
    guarded(m_context.prompter,
            [this] { fillCabinetChoice(m_ui->cboCabinet, m_ui->cmdOK, m_context.session); });
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &ExportDialog::cmdOK);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &ExportDialog::cmdCancel);
    connect(m_ui->cmdLookup, &QPushButton::clicked, this, &ExportDialog::cmdLookup);
    showProgressLayout(false);
    resize(460, sizeHint().height());
}

ExportDialog::~ExportDialog() = default;

void ExportDialog::selectCabinet(qint32 cabinetId)
{
    selectCabinetChoice(m_ui->cboCabinet, cabinetId);
}

void ExportDialog::showProgressLayout(bool exporting)
{
    // While the export runs, the bar and the status line take the place of the input.
    m_ui->fraInput->setVisible(!exporting);
    m_ui->fraProgress->setVisible(exporting);
    m_ui->cmdOK->setVisible(!exporting);
}

void ExportDialog::cmdLookup()
{
    browseForPath(m_ui->txtOutputPath, m_context.session.settings(), m_context.choosers);
}

void ExportDialog::cmdCancel()
{
    if (!m_exporting) {
        QDialog::reject();
        return;
    }
    if (m_context.prompter.confirm(tr("Stop the export?"), Prompter::Buttons::YesNo))
        m_progress->requestStop();
}

void ExportDialog::reject()
{
    cmdCancel();
}

void ExportDialog::closeEvent(QCloseEvent* event)
{
    if (m_exporting) {
        event->ignore();
        cmdCancel();
        return;
    }
    QDialog::closeEvent(event);
}

void ExportDialog::cmdOK()
{
    if (m_exporting)
        return;
    const QString path = m_ui->txtOutputPath->text().trimmed();
    const QString home = m_context.session.home().path();
    if (path.isEmpty()) {
        m_context.prompter.tell(tr("Please enter the output path."));
        m_ui->txtOutputPath->setFocus();
        return;
    }
    if (CabinetExporter::isWithinHome(path, home)) {
        m_context.prompter.tell(CabinetExporter::withinHomeMessage(home));
        m_ui->txtOutputPath->setFocus();
        return;
    }
    if (!QFileInfo(path).isDir() &&
        !m_context.prompter.confirm(
            tr("'%1' does not exist.  Do you want to create it?").arg(path))) {
        // Made by the export itself when it writes there.
        m_ui->txtOutputPath->setFocus();
        return;
    }
    guarded(m_context.prompter, [&] {
        m_context.session.settings().set(keys::LastOutputPath, path);
        const qint32 cabinetId = chosenCabinet(m_ui->cboCabinet);
        if (cabinetId < 0)
            return;
        exportCabinet(cabinetId, path);
    });
}

void ExportDialog::exportCabinet(qint32 cabinetId, const QString& path)
{
    m_exporting = true;
    showProgressLayout(true);
    m_progress->clearStop();
    PromptedQuestions questions(m_context.prompter);
    CabinetExporter exporter(m_context.session, *m_fs, questions);
    exporter.setStatusLine([this](const QString& action, const QString& text) {
        m_progress->showStatus(action, text);
    });
    const ExportReport report = exporter.exportCabinet(cabinetId, path, *m_progress);
    m_exporting = false;
    showProgressLayout(false);
    // What was written, and what failed: never a count of pages that are not there.
    m_context.prompter.tell(report.messageText());
    accept();
}

} // namespace qmr
