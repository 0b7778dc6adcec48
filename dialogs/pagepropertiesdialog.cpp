#include "dialogs/pagepropertiesdialog.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLocale>
#include <QPushButton>

#include "core/nodekey.h"
#include "store/itemrules.h"
#include "store/pagestore.h"
#include "ui_pagepropertiesdialog.h"

namespace qmr {

namespace {

QString bytes(qint64 size)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(size) +
           QCoreApplication::translate("qmr::PagePropertiesDialog", " bytes");
}

} // namespace

PagePropertiesDialog::PagePropertiesDialog(Database& db, QWidget* parent)
    : QDialog(parent), m_db(db), m_ui(std::make_unique<Ui::PagePropertiesDialog>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    for (QLabel* l : findChildren<QLabel*>())
        m_labels.insert(l->objectName(), l);
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
}

PagePropertiesDialog::~PagePropertiesDialog() = default;

QLabel* PagePropertiesDialog::label(const char* name) const
{
    return m_labels.value(QLatin1String(name));
}

QString PagePropertiesDialog::text(const QString& labelName) const
{
    const QLabel* l = m_labels.value(labelName);
    return l ? l->text() : QString();
}

void PagePropertiesDialog::populate(qint32 pageId)
{
    const PageRow f = PageStore(m_db).page(pageId).value_or(PageRow());
    label("lblPageIdData")->setText(QString::number(pageId));
    label("lblScanDateData")
        ->setText(f.scanDate.isValid() ? ItemRules::displayDate(f.scanDate) : tr("Not known"));
    label("lblFileSizeData")->setText(f.hasFileSize ? bytes(f.fileSize) : tr("Not known"));
    label("lblFileTypeData")->setText(f.fileType);
    if (f.shortcut)
        label("lblShortcutData")->setText(f.filename);
}

void PagePropertiesDialog::populateMultiple(const QVector<qint32>& pageIds)
{
    label("lblPageId")->setText(tr("Pages:"));
    PageStore pages(m_db);
    int count = 0;
    QString firstDate;
    QDate shownDate;
    bool mixed = false;
    bool sizeSeen = false;
    qint64 total = 0;
    for (const qint32 id : pageIds) {
        const std::optional<PageRow> page = pages.page(id);
        if (!page)
            continue;
        ++count;
        const PageRow& f = *page;
        if (!f.scanDateStored.isEmpty()) {
            if (firstDate.isEmpty()) {
                firstDate = f.scanDateStored;
                shownDate = f.scanDate;
            } else if (f.scanDateStored != firstDate) {
                mixed = true; // the stored values differ, times included
            }
        }
        if (f.hasFileSize) {
            total += f.fileSize;
            sizeSeen = true;
        }
    }
    label("lblPageIdData")->setText(QString::number(count) + tr(" pages"));
    label("lblScanDateData")
        ->setText(firstDate.isEmpty() ? tr("Not known")
                  : mixed             ? tr("Various")
                                      : ItemRules::displayDate(shownDate));
    label("lblFileSizeData")->setText(sizeSeen ? bytes(total) : tr("Not known"));
    label("lblFileTypeData")->setText(tr("Not konwn"));
    label("lblShortcutData")->setText(tr("Not known"));
}

} // namespace qmr
