#include "dialogs/itemdialog.h"

#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QDate>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/choosers.h"
#include "core/localenumber.h"
#include "core/navigatorcallbacks.h"
#include "core/prompter.h"
#include "dialogs/pathbrowser.h"
#include "resources/appresources.h"
#include "store/itemrules.h"
#include "store/itemstatistics.h"
#include "store/itemstore.h"
#include "store/session.h"
#include "store/storeerror.h"
#include "ui_itemdialog.h"

namespace qmr {

namespace {

struct LevelTexts
{
    const char* form;
    const char* tab;
    const char* addCaption;
    const char* editCaption;
    const char* required;
    const char* duplicate; // nullptr: names need not be unique
};

const LevelTexts& textsOf(Level level)
{
    static const LevelTexts texts[] = {
        {"frmCabinet", QT_TRANSLATE_NOOP("qmr::ItemDialog", "Cabinet"),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "Add File Cabinet"),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "File Cabinet Properties ("),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "A file cabinet name is required."),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "A file cabined named '%1' already exists.")},
        {"frmDrawer", QT_TRANSLATE_NOOP("qmr::ItemDialog", "Drawer"),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "Add Drawer"),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "Drawer Properties ("),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "A drawer name is required."),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "A drawer named '%1' already exists.")},
        {"frmFolder", QT_TRANSLATE_NOOP("qmr::ItemDialog", "Folder"),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "Add Folder"),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "Folder Properties ("),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "A folder name is required."),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "A folder named '%1' already exists.")},
        {"frmDocument", QT_TRANSLATE_NOOP("qmr::ItemDialog", "Document"),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "Add Document"),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "Document Properties ("),
         QT_TRANSLATE_NOOP("qmr::ItemDialog", "A document name is required."), nullptr},
    };
    return texts[qBound(0, static_cast<int>(level), 3)];
}

struct StatRow
{
    Level level;
    const char* caption;
    const char* label;
    const char* value;
};

constexpr StatRow kCountRows[] = {
    {Level::Drawer, QT_TRANSLATE_NOOP("qmr::ItemDialog", "Drawers:"), "lblDRW", "lblDRWCount"},
    {Level::Folder, QT_TRANSLATE_NOOP("qmr::ItemDialog", "Folders:"), "lblFLD", "lblFLDCount"},
    {Level::Document, QT_TRANSLATE_NOOP("qmr::ItemDialog", "Documents:"), "lblDOC", "lblDOCCount"},
    {Level::Page, QT_TRANSLATE_NOOP("qmr::ItemDialog", "Pages:"), "lblPAG", "lblPAGCount"},
};

} // namespace

ItemDialog::ItemDialog(Level level, const CommandContext& context, QWidget* parent,
                       bool collectOnly)
    : QDialog(parent), m_level(level), m_services(context), m_collectOnly(collectOnly),
      m_ui(std::make_unique<Ui::ItemDialog>())
{
    setObjectName(collectOnly ? QStringLiteral("frmDocumentNew")
                              : QLatin1String(textsOf(level).form));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    buildWidgets();
    updateCaption();
}

ItemDialog::~ItemDialog() = default;

void ItemDialog::buildWidgets()
{
    m_ui->setupUi(this);
    m_tabs = m_ui->tabMain;
    m_name = m_ui->txtName;
    m_description = m_ui->txtDescription;
    m_ok = m_ui->cmdOK;
    m_tabs->setTabText(0, tr(textsOf(m_level).tab));

    // The form holds the fields of every level; each level keeps its own.
    auto dropRow = [](QFormLayout* form, QWidget* label) {
        int row = -1;
        QFormLayout::ItemRole role;
        form->getWidgetPosition(label, &row, &role);
        if (row >= 0)
            form->removeRow(row);
    };
    QFormLayout* form = m_ui->formItem;
    if (m_level == Level::Cabinet)
        m_password = m_ui->txtPassword;
    else
        dropRow(form, m_ui->lblPassword);
    if (m_level == Level::Folder)
        m_email = m_ui->txtEmail;
    else
        dropRow(form, m_ui->lblEmail);
    if (m_level == Level::Document) {
        m_date = m_ui->txtDateOnDocument;
        m_now = m_ui->imgNow;
        m_amount = m_ui->txtAmount;
        m_now->setIcon(QIcon(AppResources::iconPath(QStringLiteral("clock"))));
        connect(m_now, &QToolButton::clicked, this, &ItemDialog::imgNow);
    } else {
        dropRow(form, m_ui->lblDateOnDocument);
        dropRow(form, m_ui->lblDocAmount);
    }

    if (m_level == Level::Cabinet) {
        m_storageTab = m_ui->tabStorage;
        m_storage0 = m_ui->optStorage0;
        m_storage1 = m_ui->optStorage1;
        m_saveTo = m_ui->txtSaveTo;
        m_browse = m_ui->cmdBrowse;
        m_ui->optStorage->setId(m_storage0, 0);
        m_ui->optStorage->setId(m_storage1, 1);
        connect(m_ui->optStorage, &QButtonGroup::idClicked, this, [this] { storageChanged(); });
        connect(m_browse, &QPushButton::clicked, this, &ItemDialog::cmdBrowse);
        storageChanged();
    } else {
        m_tabs->removeTab(m_tabs->indexOf(m_ui->tabStorage));
        delete m_ui->tabStorage;
    }

    if (m_collectOnly) {
        m_tabs->removeTab(m_tabs->indexOf(m_ui->tabStatistics));
        delete m_ui->tabStatistics;
    } else {
        m_statsTab = m_ui->tabStatistics;
        QFormLayout* stats = m_ui->formStatistics;
        for (const StatRow& row : kCountRows) {
            if (row.level <= m_level)
                dropRow(stats, m_statsTab->findChild<QLabel*>(QLatin1String(row.label)));
            else
                m_statLabels.insert(QLatin1String(row.value),
                                    m_statsTab->findChild<QLabel*>(QLatin1String(row.value)));
        }
        m_statLabels.insert(QStringLiteral("lblByteCount"), m_ui->lblByteCount);
        if (m_level == Level::Document)
            dropRow(stats, m_ui->lblAmount);
        else
            m_statLabels.insert(QStringLiteral("lblTTLAmount"), m_ui->lblTTLAmount);
        connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) {
            if (m_tabs->widget(index) == m_statsTab)
                loadStatistics();
        });
    }
    // A document calls its amount field's label by the name the statistics use elsewhere.
    if (m_level == Level::Document)
        m_ui->lblDocAmount->setObjectName(QStringLiteral("lblAmount"));

    m_templateLabel = m_ui->lblTemplate;
    m_template = m_ui->cboTemplate;
    m_templateLabel->hide();
    m_template->hide();
    if (m_level != Level::Drawer)
        m_template = nullptr;

    connect(m_ok, &QPushButton::clicked, this, &ItemDialog::cmdOK);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    // What is typed at once goes into the name, not to the tab bar.
    m_tabs->setCurrentIndex(0);
    m_name->setFocus();
    adjustSize();
}

void ItemDialog::updateCaption()
{
    const LevelTexts& t = textsOf(m_level);
    if (m_collectOnly || m_mode == QLatin1String("Add"))
        setWindowTitle(tr(t.addCaption));
    else
        setWindowTitle(tr(t.editCaption) + QString::number(m_id) + QLatin1Char(')'));
    // Nothing to count before the item exists.
    if (m_statsTab)
        m_tabs->setTabEnabled(m_tabs->indexOf(m_statsTab), m_mode != QLatin1String("Add"));
}

void ItemDialog::setAdd(qint32 parentId)
{
    m_mode = QStringLiteral("Add");
    m_parentId = parentId;
    m_id = -1;
    updateCaption();
}

bool ItemDialog::setEdit(qint32 id)
{
    const std::optional<ItemFields> fields = ItemStore(m_services.session.db()).fields(m_level, id);
    if (!fields)
        return false;
    m_mode = QStringLiteral("Edit");
    m_id = id;
    m_parentId = ItemStore(m_services.session.db()).parentOf(m_level, id);
    showFields(*fields);
    updateCaption();
    return true;
}

void ItemDialog::showFields(const ItemFields& f)
{
    m_name->setText(f.name);
    m_description->setPlainText(f.description);
    if (m_password)
        m_password->setText(f.password);
    if (m_saveTo) {
        m_saveTo->setText(f.storagePath);
        (f.storage == 1 ? m_storage1 : m_storage0)->setChecked(true);
        storageChanged();
    }
    if (m_email)
        m_email->setText(f.email);
    if (m_date) {
        m_date->setText(ItemRules::displayDate(f.dateOnDocument));
        m_amount->setText(f.hasAmount ? LocaleNumber().write(f.amount, 2) : QString());
    }
}

void ItemDialog::populateTemplates(const QStringList& names, TemplateApplier apply)
{
    if (!m_template || names.isEmpty())
        return;
    m_applyTemplate = std::move(apply);
    m_template->clear();
    m_template->addItem(tr("(none)"));
    m_template->addItems(names);
    m_template->setCurrentIndex(0);
    m_templateLabel->show();
    m_template->show();
}

void ItemDialog::storageChanged()
{
    const bool own = m_storage1 && m_storage1->isChecked();
    m_saveTo->setEnabled(own);
    m_browse->setEnabled(own);
}

void ItemDialog::cmdBrowse()
{
    if (m_browse && m_browse->isEnabled())
        browseForPath(m_saveTo, m_services.session.settings(), m_services.choosers);
}

void ItemDialog::imgNow()
{
    if (m_date)
        m_date->setText(QDate::currentDate().toString(QStringLiteral("MM/dd/yyyy")));
}

void ItemDialog::loadStatistics()
{
    if (m_statsLoaded || m_mode == QLatin1String("Add"))
        return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    try {
        const Statistics s = ItemStatistics(m_services.session.db()).of(m_level, m_id);
        for (const StatRow& row : kCountRows)
            if (QLabel* label = m_statLabels.value(QLatin1String(row.value)))
                label->setText(QString::number(s.count(row.level)));
        m_statLabels.value(QStringLiteral("lblByteCount"))->setText(s.bytesText());
        if (QLabel* amount = m_statLabels.value(QStringLiteral("lblTTLAmount")))
            amount->setText(s.amountText());
        m_statsLoaded = true;
    } catch (const StoreError& e) {
        QApplication::restoreOverrideCursor();
        m_services.prompter.tell(e.message());
        return;
    }
    QApplication::restoreOverrideCursor();
}

ItemFields ItemDialog::fieldsFromControls() const
{
    ItemFields f;
    f.name = m_name->text().trimmed();
    f.description = m_description->toPlainText();
    if (m_password)
        f.password = m_password->text();
    if (m_saveTo) {
        f.storage = m_storage1->isChecked() ? 1 : 0;
        f.storagePath = m_saveTo->text(); // kept even when not in use
    }
    if (m_email)
        f.email = m_email->text();
    if (m_date) {
        f.dateOnDocument = ItemRules::dateOrZero(m_date->text());
        // validate() has refused a text that is no number; a blank box is 0.
        f.amount = LocaleNumber().read(m_amount->text()).value_or(0.0);
        f.hasAmount = true;
    }
    return f;
}

bool ItemDialog::refuse(const QString& message, QWidget* focus)
{
    m_services.prompter.tell(message);
    if (focus) {
        for (QWidget* w = focus->parentWidget(); w; w = w->parentWidget())
            if (m_tabs->indexOf(w) >= 0)
                m_tabs->setCurrentWidget(w);
        focus->setFocus();
    }
    return false;
}

bool ItemDialog::validate()
{
    // The characters are tested before trimming, so that a stray one is never hidden.
    if (ItemRules::containsBadCharacters(m_name->text()))
        return refuse(ItemRules::badCharactersMessage(), m_name);
    m_name->setText(m_name->text().trimmed());
    if (m_name->text().isEmpty())
        return refuse(tr(textsOf(m_level).required), m_name);
    if (m_storage1 && m_storage1->isChecked() && ItemRules::isBlank(m_saveTo->text()))
        return refuse(tr("A storage path is required."), m_saveTo);
    if (m_date && !ItemRules::isValidDate(m_date->text()))
        return refuse(tr("Please enter a date (mm/dd/yyyy) or leave blank."), m_date);
    // An amount is read with the locale's separators; what cannot be read is refused rather
    // than stored as some other number.
    if (m_amount && !ItemRules::isBlank(m_amount->text()) && !LocaleNumber().read(m_amount->text()))
        return refuse(LocaleNumber().notANumberMessage(tr("Amount")), m_amount);
    const char* duplicate = textsOf(m_level).duplicate;
    if (duplicate && !m_collectOnly &&
        ItemStore(m_services.session.db())
            .nameTaken(m_level, m_parentId, m_name->text(),
                       m_mode == QLatin1String("Edit") ? m_id : -1))
        return refuse(tr(duplicate).arg(m_name->text()), m_name);
    // Over-long values get a plain message here rather than a failure from the store.
    try {
        ItemStore::checkWidths(m_level, fieldsFromControls());
    } catch (const StoreError& e) {
        QWidget* focus = e.column() == QLatin1String("StoragePath") ? m_saveTo
                         : e.column() == QLatin1String("Email")     ? m_email
                         : e.column() == QLatin1String("Password")  ? m_password
                         : e.column() == QLatin1String("Description")
                             ? static_cast<QWidget*>(m_description)
                             : m_name;
        return refuse(e.message(), focus);
    }
    return true;
}

void ItemDialog::write()
{
    const ItemFields f = fieldsFromControls();
    ItemStore items(m_services.session.db());
    NavigatorCallbacks* nav = m_services.navigator;
    if (m_mode != QLatin1String("Add")) {
        items.updateItem(m_level, m_id, f);
        if (nav)
            nav->itemRenamed(m_level, m_id, f.name, f.dateOnDocument);
        return;
    }
    // The new item and what its template makes belong together.
    Database::Transaction tx(m_services.session.db());
    m_id = items.insertItem(m_level, m_parentId, f);
    QVector<CreatedItem> created;
    if (m_template && m_applyTemplate && m_template->currentIndex() >= 1 &&
        m_template->currentText() != tr("(none)"))
        created = m_applyTemplate(m_template->currentText(), m_id, items);
    tx.commit();
    if (!nav)
        return;
    // Stored now: a failure to show it must not make the user add it a second time.
    try {
        nav->announce({CreatedItem{m_level, m_parentId, m_id, f.name, f.dateOnDocument}});
        nav->announce(created);
    } catch (const StoreError& e) {
        m_services.prompter.tell(e.message());
    }
}

void ItemDialog::cmdOK()
{
    try {
        if (!validate())
            return;
    } catch (const StoreError& e) {
        m_services.prompter.tell(e.message());
        return;
    }
    if (m_collectOnly) {
        m_result.cancelled = false;
        m_result.name = m_name->text();
        m_result.dateOnDocument = m_date->text();
        m_result.description = m_description->toPlainText();
        m_result.amount =
            QString::number(fieldsFromControls().amount, 'g', QLocale::FloatingPointShortest);
        accept();
        return;
    }
    try {
        write();
    } catch (const StoreError& e) {
        // The dialog stays open with what the user typed.
        m_services.prompter.tell(e.message());
        return;
    }
    accept();
}

} // namespace qmr
