#include "text/textsettingsdialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace qmr {

TextSettingsDialog::TextSettingsDialog(const QString& chosen, const QStringList& installed,
                                       QWidget* parent)
    : QDialog(parent), m_list(new QListWidget(this)), m_missing(new QLabel(this))
{
    setObjectName(QStringLiteral("frmTextSettings"));
    setWindowTitle(tr("Page Text Settings"));
    auto* layout = new QVBoxLayout(this);
    auto* intro = new QLabel(tr("The text on the pages is read in these &languages:"), this);
    intro->setObjectName(QStringLiteral("lblLanguages"));
    intro->setBuddy(m_list);
    layout->addWidget(intro);

    m_list->setObjectName(QStringLiteral("lstLanguages"));
    m_list->setAccessibleName(tr("Languages"));
    m_before = chosen.split(QLatin1Char('+'), Qt::SkipEmptyParts);
    const QStringList& wanted = m_before;
    for (const QString& pack : installed) {
        auto* item = new QListWidgetItem(displayName(pack), m_list);
        item->setData(Qt::UserRole, pack);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(wanted.contains(pack) ? Qt::Checked : Qt::Unchecked);
    }
    m_list->setMinimumSize(320, 160);
    layout->addWidget(m_list);

    QStringList missing;
    for (const QString& pack : wanted)
        if (!installed.contains(pack))
            missing << pack;
    m_missing->setObjectName(QStringLiteral("lblMissing"));
    m_missing->setWordWrap(true);
    m_missing->setTextFormat(Qt::PlainText);
    if (installed.isEmpty())
        m_missing->setText(tr("No language pack for reading text is installed, so the text on "
                              "the pages is not read. Install one, for example the package "
                              "tesseract-ocr-eng for English."));
    else if (!missing.isEmpty())
        m_missing->setText(tr("The language pack for %1 is not installed, so the text on the "
                              "pages is not read. Install it (the package tesseract-ocr-%2), or "
                              "choose languages from the list.")
                               .arg(missing.join(QLatin1String(", ")), missing.first()));
    m_missing->setVisible(!m_missing->text().isEmpty());
    layout->addWidget(m_missing);

    auto* more = new QLabel(tr("More languages come with their packages, named "
                               "tesseract-ocr- and the language's three letters."),
                            this);
    more->setObjectName(QStringLiteral("lblMoreLanguages"));
    more->setWordWrap(true);
    layout->addWidget(more);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    m_ok->setObjectName(QStringLiteral("cmdOK"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    connect(m_list, &QListWidget::itemChanged, this, &TextSettingsDialog::updateButtons);
    updateButtons();
    m_list->setCurrentRow(0);
    m_list->setFocus();
}

QString TextSettingsDialog::languages() const
{
    QStringList checked;
    for (int row = 0; row < m_list->count(); ++row)
        if (m_list->item(row)->checkState() == Qt::Checked)
            checked << m_list->item(row)->data(Qt::UserRole).toString();
    QStringList ordered;
    for (const QString& pack : m_before)
        if (checked.contains(pack))
            ordered << pack;
    for (const QString& pack : checked)
        if (!ordered.contains(pack))
            ordered << pack;
    return ordered.join(QLatin1Char('+'));
}

QString TextSettingsDialog::displayName(const QString& pack)
{
    // Packs are named by the language's three letters, some with a script after them.
    const QString code = pack.section(QLatin1Char('_'), 0, 0);
    const QLocale::Language language = QLocale::codeToLanguage(
        code, QLocale::ISO639Part2T | QLocale::ISO639Part2B | QLocale::ISO639Part3);
    if (language == QLocale::AnyLanguage || language == QLocale::C)
        return pack;
    return tr("%1 (%2)").arg(QLocale::languageToString(language), pack);
}

void TextSettingsDialog::updateButtons()
{
    // Reading needs at least one language.
    m_ok->setEnabled(!languages().isEmpty());
}

} // namespace qmr
