#include "exchange/importdialog.h"

#include <QCloseEvent>
#include <QDir>
#include <cmath>

#include "core/choosers.h"
#include "core/pagenotifier.h"
#include "core/prompter.h"
#include "core/settings.h"
#include "exchange/cabinetchoice.h"
#include "exchange/cabinetimporter.h"
#include "exchange/dialogprogress.h"
#include "exchange/diskfilesystem.h"
#include "exchange/exchangereader.h"
#include "exchange/promptedquestions.h"
#include "store/commandguard.h"
#include "store/itemrules.h"
#include "store/pagepaths.h"
#include "store/session.h"
#include "ui_importdialog.h"

namespace qmr {

ImportDialog::ImportDialog(const CommandContext& context, QWidget* parent, ExchangeFileSystem* fs)
    : QDialog(parent), m_context(context), m_ui(std::make_unique<Ui::ImportDialog>()), m_fs(fs)
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
    const QString path = m_context.session.settings().get(keys::LastImportPath);
    m_ui->txtImportPath->setText(path.isEmpty() ? QDir::homePath() : path);
    guarded(m_context.prompter,
            [this] { fillCabinetChoice(m_ui->cboCabinet, m_ui->cmdOK, m_context.session); });
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &ImportDialog::cmdOK);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &ImportDialog::cmdCancel);
    connect(m_ui->cmdLookup, &QPushButton::clicked, this, &ImportDialog::cmdLookup);
    showProgressLayout(false);
    resize(480, sizeHint().height());
}

ImportDialog::~ImportDialog() = default;

void ImportDialog::selectCabinet(qint32 cabinetId)
{
    selectCabinetChoice(m_ui->cboCabinet, cabinetId);
}

void ImportDialog::showProgressLayout(bool importing)
{
    m_ui->fraInput->setVisible(!importing);
    m_ui->fraProgress->setVisible(importing);
    m_ui->cmdOK->setVisible(!importing);
}

void ImportDialog::cmdLookup()
{
    // The marker file stands for its directory.
    QString dir = m_ui->txtImportPath->text().trimmed();
    if (!QFileInfo(dir).isDir())
        dir = PagePaths::directoryPart(dir);
    const QString start =
        QDir(dir.isEmpty() ? QDir::homePath() : dir).filePath(QStringLiteral("QMR.txt"));
    const std::optional<QString> chosen = m_context.choosers.chooseFileToOpen(
        start, {tr("All files (*)"), tr("File cabinets (qmr.txt QMR.txt QMR.TXT)")}, 1);
    if (!chosen)
        return;
    QString chosenDir = PagePaths::directoryPart(*chosen);
    if (chosenDir.size() > 1 && chosenDir.endsWith(QLatin1Char('/')))
        chosenDir.chop(1);
    m_ui->txtImportPath->setText(chosenDir);
}

void ImportDialog::cmdCancel()
{
    if (!m_importing) {
        QDialog::reject();
        return;
    }
    if (m_context.prompter.confirm(tr("Stop the import?"), Prompter::Buttons::YesNo))
        m_progress->requestStop();
}

void ImportDialog::reject()
{
    cmdCancel();
}

void ImportDialog::closeEvent(QCloseEvent* event)
{
    if (m_importing) {
        event->ignore();
        cmdCancel();
        return;
    }
    QDialog::closeEvent(event);
}

void ImportDialog::cmdOK()
{
    if (m_importing)
        return;
    const QString path = m_ui->txtImportPath->text().trimmed();
    if (path.isEmpty() || !m_fs->isDirectory(path)) {
        m_context.prompter.tell(CabinetImporter::missingPathMessage(path));
        return;
    }
    if (!ExchangeReader(*m_fs).hasMarker(path)) {
        m_context.prompter.tell(CabinetImporter::missingMarkerMessage());
        m_ui->txtImportPath->setFocus();
        return;
    }
    // The whole-number part of what was typed; "1.9" is one disk.
    const double typed = std::trunc(ItemRules::leadingNumber(m_ui->txtDiskCount->text()));
    const int diskCount = int(qBound(-1.0e9, typed, 1.0e9));
    m_ui->txtDiskCount->setText(QString::number(diskCount));
    if (diskCount >= 10 &&
        !m_context.prompter.confirm(tr("You have designated over 10 disks to import.  Continue?"),
                                    Prompter::Buttons::YesNo)) {
        m_ui->txtDiskCount->setFocus();
        return;
    }
    if (diskCount < 1) {
        m_context.prompter.tell(tr("You have entered a disk count less than 1."));
        m_ui->txtDiskCount->setFocus();
        return;
    }
    guarded(m_context.prompter, [&] {
        m_context.session.settings().set(keys::LastImportPath, m_ui->txtImportPath->text());
        const qint32 cabinetId = chosenCabinet(m_ui->cboCabinet);
        if (cabinetId < 0)
            return;
        importCabinet(cabinetId, path, diskCount);
    });
}

void ImportDialog::importCabinet(qint32 cabinetId, const QString& path, int diskCount)
{
    m_importing = true;
    showProgressLayout(true);
    m_progress->clearStop();
    PromptedQuestions questions(m_context.prompter);
    CabinetImporter importer(m_context.session, *m_fs, questions, m_context.navigator);
    importer.setThumbnailThreads(m_threads);
    importer.setStatusLine([this](const QString& action, const QString& text) {
        m_progress->showStatus(action, text);
    });
    const ImportReport report = importer.importCabinet(cabinetId, path, diskCount, *m_progress);
    m_importing = false;
    showProgressLayout(false);
    if (report.filesImported + report.shortcutsCreated > 0 && m_context.pageNotifier)
        m_context.pageNotifier->picturesArrived();
    // The store refused something: say what, then what came in before it.
    if (!report.error.isEmpty())
        m_context.prompter.tell(report.error);
    // The counts, then what the walk passed over on purpose.
    const QString skipped = report.skippedText();
    m_context.prompter.tell(skipped.isEmpty()
                                ? report.reportText()
                                : report.reportText() + QStringLiteral("\r\n\r\n") + skipped);
    accept();
}

} // namespace qmr
