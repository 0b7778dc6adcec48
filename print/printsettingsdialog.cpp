#include "print/printsettingsdialog.h"

#include <QLocale>
#include <optional>

#include "core/prompter.h"
#include "core/settings.h"
#include "ui_printsettingsdialog.h"

namespace qmr {

namespace {

// A typed percentage within 10..200; nothing for anything else, a text that is no number too.
std::optional<double> percentage(const QString& text)
{
    bool isNumber = false;
    double value = QLocale().toDouble(text.trimmed(), &isNumber);
    if (!isNumber)
        value = text.trimmed().toDouble(&isNumber);
    if (!isNumber || value < 10 || value > 200)
        return std::nullopt;
    return value;
}

} // namespace

PrintSettingsDialog::PrintSettingsDialog(Settings& settings, Prompter& prompter, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::PrintSettingsDialog>()), m_settings(settings),
      m_prompter(prompter)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    m_ui->txtWidthPct->setText(settings.get(keys::PrintWidthPct));
    m_ui->txtHeightPct->setText(settings.get(keys::PrintHeightPct));
    m_ui->txtWidthPct->selectAll();
    connect(m_ui->cmdOK, &QPushButton::clicked, this, [this] {
        if (cmdOK())
            accept();
    });
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

PrintSettingsDialog::~PrintSettingsDialog() = default;

bool PrintSettingsDialog::cmdOK()
{
    const std::optional<double> width = percentage(m_ui->txtWidthPct->text());
    if (!width) {
        m_prompter.tell(tr("Print width % must be between 10% and 200%."));
        m_ui->txtWidthPct->setFocus();
        m_ui->txtWidthPct->selectAll();
        return false;
    }
    const std::optional<double> height = percentage(m_ui->txtHeightPct->text());
    if (!height) {
        m_prompter.tell(tr("Print height % must be between 10% and 200%."));
        m_ui->txtHeightPct->setFocus();
        m_ui->txtHeightPct->selectAll();
        return false;
    }
    m_settings.set(keys::PrintWidthPct, QString::number(*width));
    m_settings.set(keys::PrintHeightPct, QString::number(*height));
    return true;
}

} // namespace qmr
