#pragma once

#include <QDialog>
#include <memory>

#include "scan/scansource.h"

class QComboBox;

namespace Ui {
class ScanSettingsDialog;
}

namespace qmr {

class Settings;

// frmScanSettings: the scanner and camera, the feeder, what follows a scan, and the colour,
// resolution and quality of documents and pictures. It opens at once with the stored choices
// and fills the device lists when the system has answered; Refresh looks again. OK writes
// every setting shown, then marks the settings as seen; Cancel writes nothing.
class ScanSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    ScanSettingsDialog(Settings& settings, ScanSource& source, QWidget* parent = nullptr);
    ~ScanSettingsDialog() override;

    bool isLooking() const { return m_looking > 0; }
    const QVector<ScanDevice>& devices() const { return m_devices; }

public slots:
    void cmdOK();
    void cmdRefresh();

signals:
    // The device lists were filled from an answer of the system.
    void devicesListed();

private:
    void load();
    void showDevices(const QVector<ScanDevice>& devices, const QString& failure);
    // Fills a device list, keeping `chosen` selected (shown as not found when it is missing).
    void fillDevices(QComboBox* box, const QString& chosen);
    static QString chosenDevice(const QComboBox* box);
    void feederChanged();

    std::unique_ptr<Ui::ScanSettingsDialog> m_ui;
    Settings& m_settings;
    ScanSource& m_source;
    QVector<ScanDevice> m_devices;
    int m_looking = 0;
};

} // namespace qmr
