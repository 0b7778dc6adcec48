#include "help/aboutdialog.h"

#include "ui_aboutdialog.h"

namespace qmr {

AboutDialog::AboutDialog(qint64 pageCount, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::AboutDialog>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    QFont name = m_ui->lblApp->font();
    name.setPointSizeF(name.pointSizeF() * 1.4);
    name.setBold(true);
    m_ui->lblApp->setFont(name);
    m_ui->lblApp->setText(tr("Quillmere ") + version());
    m_ui->lblPgCnt->setText(tr("Pages stored: ") + formatPageCount(pageCount));
    const QIcon icon = windowIcon();
    if (!icon.isNull())
        m_ui->imgIcon->setPixmap(icon.pixmap(64, 64));
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
}

AboutDialog::~AboutDialog() = default;

QString AboutDialog::version()
{
    return QStringLiteral(QMR_VERSION);
}

QString AboutDialog::formatPageCount(qint64 count, const QLocale& locale)
{
    if (count == 0)
        return QString();
    const QString digits = QString::number(qAbs(count));
    QString grouped;
    for (qsizetype i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            grouped += locale.groupSeparator();
        grouped += digits.at(i);
    }
    return count < 0 ? QStringLiteral("-") + grouped : grouped;
}

} // namespace qmr
