#include "viewer/viewsettingsdialog.h"

#include <QApplication>
#include <QPushButton>

#include "core/viewsettings.h"
#include "viewer/pageviewwindow.h"
#include "ui_viewsettingsdialog.h"

namespace qmr {

ViewSettingsDialog::ViewSettingsDialog(ViewSettings& view, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::ViewSettingsDialog>()), m_view(view)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    const QString zoom = view.zoomDefault();
    m_ui->cboZoom->setCurrentIndex(zoom == QLatin1String("FITWIDTH")    ? 1
                                   : zoom == QLatin1String("FITHEIGHT") ? 2
                                                                        : 0);
    connect(m_ui->cboZoom, &QComboBox::activated, this, &ViewSettingsDialog::chooseZoom);
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
}

ViewSettingsDialog::~ViewSettingsDialog() = default;

void ViewSettingsDialog::chooseZoom(int index)
{
    m_view.setZoomDefault(index == 1   ? QStringLiteral("FITWIDTH")
                          : index == 2 ? QStringLiteral("FITHEIGHT")
                                       : QStringLiteral("NONE"));
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* viewer = qobject_cast<PageViewWindow*>(window))
            viewer->applyZoomDefault();
}

} // namespace qmr
