#pragma once

#include <QDialog>
#include <QHash>
#include <memory>

#include "scan/scansource.h"

class QGroupBox;
class QLabel;

namespace Ui {
class ScanOptionsDialog;
}

namespace qmr {

// The device's own options before a scan, built from what the device says of them: a list
// becomes a choice, a range a number field with its limits and unit, a switch a check box,
// a button a button. Each change goes to the device at once, and the dialog follows what the
// device makes of it (an option may switch others on or off). Scan goes on; Cancel stops.
class ScanOptionsDialog : public QDialog
{
    Q_OBJECT
public:
    ScanOptionsDialog(const QString& deviceLabel, ScanSource& source, QWidget* parent = nullptr);
    ~ScanOptionsDialog() override;

    void setOptions(const QVector<ScanOption>& options);
    const QVector<ScanOption>& options() const { return m_options; }
    // The control of an option (its objectName is the option's name); null when not shown.
    QWidget* control(const QString& name) const { return m_controls.value(name); }

signals:
    // The device answered a change.
    void optionsUpdated();

private:
    void build();
    void refresh();
    QWidget* makeControl(const ScanOption& option);
    void showValue(QWidget* control, const ScanOption& option);
    void change(const QString& name, const QVariant& value);
    void answered(const QVector<ScanOption>& options, const QString& failure);
    // The same options in the same shape: the controls can stay.
    bool sameShape(const QVector<ScanOption>& options) const;

    std::unique_ptr<Ui::ScanOptionsDialog> m_ui;
    ScanSource& m_source;
    QVector<ScanOption> m_options;
    QHash<QString, QWidget*> m_controls;
    QHash<QString, QWidget*> m_rows; // the label or check box row of each option
    QHash<QString, QGroupBox*> m_groups;
    bool m_updating = false;
};

} // namespace qmr
