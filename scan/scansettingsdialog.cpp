#include "scan/scansettingsdialog.h"

#include <QComboBox>
#include <QPushButton>

#include "core/settings.h"
#include "scan/scansettings.h"
#include "ui_scansettingsdialog.h"

namespace qmr {

namespace {

// The scan types in the order of the lists, as the settings keep them.
const char* const kScanTypes[] = {"black & white", "grayscale", "color"};

int scanTypeIndex(const QString& stored)
{
    const QString letter = ScanSettings::letterOf(stored);
    return letter == QLatin1String("B") ? 0 : letter == QLatin1String("G") ? 1 : 2;
}

} // namespace

ScanSettingsDialog::ScanSettingsDialog(Settings& settings, ScanSource& source, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::ScanSettingsDialog>()), m_settings(settings),
      m_source(source)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &ScanSettingsDialog::cmdOK);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_ui->cmdRefresh, &QPushButton::clicked, this, &ScanSettingsDialog::cmdRefresh);
    connect(m_ui->chkADF, &QCheckBox::toggled, this, &ScanSettingsDialog::feederChanged);
    connect(&m_source, &ScanSource::devicesFound, this, &ScanSettingsDialog::showDevices);
    load();
    cmdRefresh();
}

ScanSettingsDialog::~ScanSettingsDialog() = default;

void ScanSettingsDialog::load()
{
    const ScanSettings scan(m_settings);
    m_ui->cboAfterScan->setCurrentIndex(
        m_settings.mode(keys::AfterScan) == AfterScanMode::Return ? 1 : 0);
    m_ui->cboGetDocInfo->setCurrentIndex(
        m_settings.mode(keys::GetDocInfo) == DocInfoTime::BeforeScan ? 1 : 0);
    m_ui->chkADF->setChecked(m_settings.flag(keys::ScanFeeder));
    m_ui->chkDuplex->setChecked(m_settings.flag(keys::ScanDuplex));
    m_ui->chkShowUI->setChecked(m_settings.flag(keys::ScanShowUi));
    feederChanged();
    fillDevices(m_ui->cboScanner, m_settings.get(keys::ScanSource));
    fillDevices(m_ui->cboCamera, m_settings.get(keys::CameraSource));
    m_ui->cboDocScanType->setCurrentIndex(scanTypeIndex(m_settings.get(keys::DocScanType)));
    m_ui->cboPicScanType->setCurrentIndex(scanTypeIndex(m_settings.get(keys::PicScanType)));
    m_ui->spnDocDPI->setValue(scan.docDpi());
    m_ui->spnPicDPI->setValue(scan.picDpi());
    m_ui->spnDocQuality->setValue(scan.docQuality());
    m_ui->spnPicQuality->setValue(scan.picQuality());
}

void ScanSettingsDialog::feederChanged()
{
    m_ui->chkDuplex->setEnabled(m_ui->chkADF->isChecked());
}

QString ScanSettingsDialog::chosenDevice(const QComboBox* box)
{
    return box->currentData().toString();
}

void ScanSettingsDialog::fillDevices(QComboBox* box, const QString& chosen)
{
    box->clear();
    box->addItem(QStringLiteral("(none)"), QString());
    bool listed = chosen.isEmpty();
    for (const ScanDevice& device : m_devices) {
        box->addItem(device.label(), device.name);
        listed = listed || device.name == chosen;
    }
    // A device that is off or unplugged at the moment stays chosen until someone changes it.
    if (!listed) {
        const QString shown =
            m_looking > 0 || m_devices.isEmpty() ? chosen : chosen + QStringLiteral(" (not found)");
        box->addItem(shown, chosen);
    }
    box->setCurrentIndex(qMax(0, box->findData(chosen)));
}

void ScanSettingsDialog::cmdRefresh()
{
    ++m_looking;
    m_ui->lblLooking->setText(tr("Looking for scanners…"));
    m_ui->cmdRefresh->setEnabled(false);
    m_source.findDevices();
}

void ScanSettingsDialog::showDevices(const QVector<ScanDevice>& devices, const QString& failure)
{
    m_looking = qMax(0, m_looking - 1);
    m_devices = devices;
    QString scanner = chosenDevice(m_ui->cboScanner);
    // Someone who has never chosen gets the first device the system offers.
    if (scanner.isEmpty() && !m_settings.contains(QLatin1String(keys::ScanSource.name)) &&
        !devices.isEmpty())
        scanner = devices.first().name;
    fillDevices(m_ui->cboScanner, scanner);
    fillDevices(m_ui->cboCamera, chosenDevice(m_ui->cboCamera));
    if (!failure.isEmpty())
        m_ui->lblLooking->setText(tr("Looking for scanners failed: %1").arg(failure));
    else if (devices.isEmpty())
        m_ui->lblLooking->setText(tr("No scanners or cameras were found."));
    else if (devices.size() == 1)
        m_ui->lblLooking->setText(QStringLiteral("1 device found."));
    else
        m_ui->lblLooking->setText(QStringLiteral("%1 devices found.").arg(devices.size()));
    if (m_looking == 0)
        m_ui->cmdRefresh->setEnabled(true);
    else
        m_ui->lblLooking->setText(tr("Looking for scanners…"));
    emit devicesListed();
}

void ScanSettingsDialog::cmdOK()
{
    m_settings.set(keys::ScanSource, chosenDevice(m_ui->cboScanner));
    m_settings.setMode(keys::AfterScan, m_ui->cboAfterScan->currentIndex() == 1
                                            ? AfterScanMode::Return
                                            : AfterScanMode::OpenViewer);
    m_settings.setMode(keys::GetDocInfo, m_ui->cboGetDocInfo->currentIndex() == 1
                                             ? DocInfoTime::BeforeScan
                                             : DocInfoTime::AfterScan);
    m_settings.setFlag(keys::ScanFeeder, m_ui->chkADF->isChecked());
    // What else the dialog shows is kept too: a change made here must not be lost.
    m_settings.set(keys::CameraSource, chosenDevice(m_ui->cboCamera));
    m_settings.setFlag(keys::ScanDuplex, m_ui->chkDuplex->isChecked());
    m_settings.setFlag(keys::ScanShowUi, m_ui->chkShowUI->isChecked());
    m_settings.set(keys::DocScanType,
                   QLatin1String(kScanTypes[qBound(0, m_ui->cboDocScanType->currentIndex(), 2)]));
    m_settings.set(keys::PicScanType,
                   QLatin1String(kScanTypes[qBound(0, m_ui->cboPicScanType->currentIndex(), 2)]));
    m_settings.set(keys::DocDpi, QString::number(m_ui->spnDocDPI->value()));
    m_settings.set(keys::PicDpi, QString::number(m_ui->spnPicDPI->value()));
    m_settings.set(keys::DocQuality, QString::number(m_ui->spnDocQuality->value()));
    m_settings.set(keys::PicQuality, QString::number(m_ui->spnPicQuality->value()));
    m_settings.set(keys::SetupScanSettings, QStringLiteral("True"));
    accept();
}

} // namespace qmr
