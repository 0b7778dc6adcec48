#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class ViewSettingsDialog;
}

namespace qmr {

class ViewSettings;

// frmViewSettings: the zoom a page comes up at. A choice is written at once, and every open
// viewer applies it at once.
class ViewSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    explicit ViewSettingsDialog(ViewSettings& view, QWidget* parent = nullptr);
    ~ViewSettingsDialog() override;

    // cboZoom's click: position 1 "FITWIDTH", 2 "FITHEIGHT", any other "NONE".
    void chooseZoom(int index);

private:
    std::unique_ptr<Ui::ViewSettingsDialog> m_ui;
    ViewSettings& m_view;
};

} // namespace qmr
