#include "dialogs/itemdialog.h"

#include "core/choosers.h"
#include "core/navigatorcallbacks.h"
#include "core/prompter.h"
#include "dialogs/pathbrowser.h"
#include "store/itemrules.h"
#include "store/itemstatistics.h"
#include "store/itemstore.h"
#include "store/session.h"
#include "store/storeerror.h"

#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QDate>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

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
        {"frmCabinet", "Cabinet", "Add File Cabinet", "File Cabinet Properties (",
         "A file cabinet name is required.", "A file cabined named '%1' already exists."},
        {"frmDrawer", "Drawer", "Add Drawer", "Drawer Properties (", "A drawer name is required.",
         "A drawer named '%1' already exists."},
        {"frmFolder", "Folder", "Add Folder", "Folder Properties (", "A folder name is required.",
         "A folder named '%1' already exists."},
        {"frmDocument", "Document", "Add Document", "Document Properties (",
         "A document name is required.", nullptr},
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
    {Level::Drawer, "Drawers:", "lblDRW", "lblDRWCount"},
    {Level::Folder, "Folders:", "lblFLD", "lblFLDCount"},
    {Level::Document, "Documents:", "lblDOC", "lblDOCCount"},
    {Level::Page, "Pages:", "lblPAG", "lblPAGCount"},
};

QLabel* namedLabel(const QString& text, const char* name, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(QLatin1String(name));
    return label;
}

QIcon clockIcon()
{
    QPixmap pm(32, 32);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0x37, 0x47, 0x4f), 2.5));
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(16, 16), 13, 13);
    p.drawLine(QPointF(16, 16), QPointF(16, 8));
    p.drawLine(QPointF(16, 16), QPointF(22, 19));
    return QIcon(pm);
}

} // namespace

ItemDialog::ItemDialog(Level level, DialogServices services, QWidget* parent, bool collectOnly)
    : QDialog(parent), m_level(level), m_services(services), m_collectOnly(collectOnly)
{
    setObjectName(collectOnly ? QStringLiteral("frmDocumentNew")
                              : QLatin1String(textsOf(level).form));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    buildWidgets();
    UpdateCaption();
}

ItemDialog::~ItemDialog() = default;

void ItemDialog::buildWidgets()
{
    auto* outer = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("tabMain"));
    outer->addWidget(m_tabs);

    auto* main = new QWidget(m_tabs);
    auto* form = new QFormLayout(main);
    m_name = new QLineEdit(main);
    m_name->setObjectName(QStringLiteral("txtName"));
    m_name->setMinimumWidth(320);
    form->addRow(namedLabel(QStringLiteral("Name:"), "lblName", main), m_name);
    if (m_level == Level::Cabinet) {
        m_password = new QLineEdit(main);
        m_password->setObjectName(QStringLiteral("txtPassword"));
        m_password->setMaxLength(10);
        form->addRow(namedLabel(QStringLiteral("Password:"), "lblPassword", main), m_password);
    }
    m_description = new QPlainTextEdit(main);
    m_description->setObjectName(QStringLiteral("txtDescription"));
    m_description->setTabChangesFocus(true);
    m_description->setMinimumHeight(90);
    form->addRow(namedLabel(QStringLiteral("Description:"), "lblDescription", main), m_description);
    if (m_level == Level::Folder) {
        m_email = new QLineEdit(main);
        m_email->setObjectName(QStringLiteral("txtEmail"));
        form->addRow(namedLabel(QStringLiteral("Email to:"), "lblEmail", main), m_email);
    }
    if (m_level == Level::Document) {
        auto* row = new QHBoxLayout();
        m_date = new QLineEdit(main);
        m_date->setObjectName(QStringLiteral("txtDateOnDocument"));
        m_date->setPlaceholderText(QStringLiteral("mm/dd/yyyy"));
        m_now = new QToolButton(main);
        m_now->setObjectName(QStringLiteral("imgNow"));
        m_now->setIcon(clockIcon());
        m_now->setToolTip(QStringLiteral("Today"));
        m_now->setAutoRaise(true);
        connect(m_now, &QToolButton::clicked, this, &ItemDialog::imgNow);
        row->addWidget(m_date, 1);
        row->addWidget(m_now);
        form->addRow(namedLabel(QStringLiteral("Date:"), "lblDateOnDocument", main), row);
        m_amount = new QLineEdit(main);
        m_amount->setObjectName(QStringLiteral("txtAmount"));
        form->addRow(namedLabel(QStringLiteral("Amount:"), "lblAmount", main), m_amount);
    }
    m_tabs->addTab(main, QLatin1String(textsOf(m_level).tab));

    if (m_level == Level::Cabinet) {
        m_storageTab = new QWidget(m_tabs);
        auto* box = new QVBoxLayout(m_storageTab);
        m_storage0 = new QRadioButton(
            QStringLiteral("Let QMR determine saved image filenames (recommended)"), m_storageTab);
        m_storage0->setObjectName(QStringLiteral("optStorage0"));
        m_storage1 = new QRadioButton(
            QStringLiteral("Let me specify where new scanned images are saved"), m_storageTab);
        m_storage1->setObjectName(QStringLiteral("optStorage1"));
        auto* group = new QButtonGroup(m_storageTab);
        group->setObjectName(QStringLiteral("optStorage"));
        group->addButton(m_storage0, 0);
        group->addButton(m_storage1, 1);
        m_storage0->setChecked(true);
        box->addWidget(m_storage0);
        box->addWidget(m_storage1);
        box->addWidget(
            namedLabel(QStringLiteral("Save new images to:"), "lblSaveTo", m_storageTab));
        auto* row = new QHBoxLayout();
        m_saveTo = new QLineEdit(m_storageTab);
        m_saveTo->setObjectName(QStringLiteral("txtSaveTo"));
        m_saveTo->setMaxLength(255);
        m_browse = new QPushButton(QStringLiteral("Browse"), m_storageTab);
        m_browse->setObjectName(QStringLiteral("cmdBrowse"));
        row->addWidget(m_saveTo, 1);
        row->addWidget(m_browse);
        box->addLayout(row);
        box->addStretch(1);
        connect(group, &QButtonGroup::idClicked, this, [this] { storageChanged(); });
        connect(m_browse, &QPushButton::clicked, this, &ItemDialog::cmdBrowse);
        m_tabs->addTab(m_storageTab, QStringLiteral("Storage"));
        storageChanged();
    }

    if (!m_collectOnly) {
        m_statsTab = new QWidget(m_tabs);
        auto* stats = new QFormLayout(m_statsTab);
        for (const StatRow& row : kCountRows) {
            if (row.level <= m_level)
                continue;
            QLabel* value = namedLabel(QStringLiteral("0"), row.value, m_statsTab);
            m_statLabels.insert(QLatin1String(row.value), value);
            stats->addRow(namedLabel(QLatin1String(row.caption), row.label, m_statsTab), value);
        }
        QLabel* bytes = namedLabel(QStringLiteral("0 bytes"), "lblByteCount", m_statsTab);
        m_statLabels.insert(QStringLiteral("lblByteCount"), bytes);
        stats->addRow(namedLabel(QStringLiteral("Bytes:"), "lblBytes", m_statsTab), bytes);
        if (m_level != Level::Document) {
            QLabel* amount = namedLabel(QStringLiteral("$0.00"), "lblTTLAmount", m_statsTab);
            m_statLabels.insert(QStringLiteral("lblTTLAmount"), amount);
            stats->addRow(namedLabel(QStringLiteral("Amount:"), "lblAmount", m_statsTab), amount);
        }
        m_tabs->addTab(m_statsTab, QStringLiteral("Statistics"));
        connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) {
            if (m_tabs->widget(index) == m_statsTab)
                loadStatistics();
        });
    }

    if (m_level == Level::Drawer) {
        auto* row = new QHBoxLayout();
        m_templateLabel = namedLabel(QStringLiteral("Build new drawer using this template:"),
                                     "lblTemplate", this);
        m_template = new QComboBox(this);
        m_template->setObjectName(QStringLiteral("cboTemplate"));
        row->addWidget(m_templateLabel);
        row->addWidget(m_template, 1);
        outer->addLayout(row);
        m_templateLabel->hide();
        m_template->hide();
    }

    auto* buttons = new QHBoxLayout();
    buttons->addStretch(1);
    m_ok = new QPushButton(QStringLiteral("OK"), this);
    m_ok->setObjectName(QStringLiteral("cmdOK"));
    m_ok->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    buttons->addWidget(m_ok);
    buttons->addWidget(cancel);
    outer->addLayout(buttons);
    connect(m_ok, &QPushButton::clicked, this, &ItemDialog::cmdOK);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void ItemDialog::UpdateCaption()
{
    const LevelTexts& t = textsOf(m_level);
    if (m_collectOnly || m_mode == QLatin1String("Add"))
        setWindowTitle(QLatin1String(t.addCaption));
    else
        setWindowTitle(QLatin1String(t.editCaption) + QString::number(m_id) + QLatin1Char(')'));
    // Nothing to count before the item exists.
    if (m_statsTab)
        m_tabs->setTabEnabled(m_tabs->indexOf(m_statsTab), m_mode != QLatin1String("Add"));
}

void ItemDialog::setAdd(qint32 parentId)
{
    m_mode = QStringLiteral("Add");
    m_parentId = parentId;
    m_id = -1;
    UpdateCaption();
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
    UpdateCaption();
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
        m_amount->setText(f.hasAmount ? QString::number(f.amount, 'f', 2) : QString());
    }
}

void ItemDialog::PopulateTemplates(const QStringList& names, TemplateApplier apply)
{
    if (!m_template || names.isEmpty())
        return;
    m_applyTemplate = std::move(apply);
    m_template->clear();
    m_template->addItem(QStringLiteral("(none)"));
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
        BrowseForPath(m_saveTo, m_services.session.settings(), m_services.choosers);
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
        f.dateOnDocument = ItemRules::DateOrZero(m_date->text());
        f.amount = ItemRules::leadingNumber(m_amount->text());
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
    if (ItemRules::ContainsBadCharacters(m_name->text()))
        return refuse(ItemRules::badCharactersMessage(), m_name);
    m_name->setText(m_name->text().trimmed());
    if (m_name->text().isEmpty())
        return refuse(QLatin1String(textsOf(m_level).required), m_name);
    if (m_storage1 && m_storage1->isChecked() && ItemRules::IsBlank(m_saveTo->text()))
        return refuse(QStringLiteral("A storage path is required."), m_saveTo);
    if (m_date && !ItemRules::IsValidDate(m_date->text()))
        return refuse(QStringLiteral("Please enter a date (mm/dd/yyyy) or leave blank."), m_date);
    const char* duplicate = textsOf(m_level).duplicate;
    if (duplicate && !m_collectOnly &&
        ItemStore(m_services.session.db())
            .nameTaken(m_level, m_parentId, m_name->text(),
                       m_mode == QLatin1String("Edit") ? m_id : -1))
        return refuse(QString::fromUtf8(duplicate).arg(m_name->text()), m_name);
    // Over-long values get a plain message here rather than a failure from the store.
    try {
        ItemStore::checkWidths(m_level, fieldsFromControls());
    } catch (const StoreError& e) {
        QWidget* focus = e.message().contains(QLatin1String("storage path")) ? m_saveTo
                         : e.message().contains(QLatin1String("email"))      ? m_email
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
        if (!nav)
            return;
        switch (m_level) {
        case Level::Cabinet:
            nav->UpdateCabinetName(m_id, f.name);
            break;
        case Level::Drawer:
            nav->UpdateDrawerName(m_id, f.name);
            break;
        case Level::Folder:
            nav->UpdateFolderName(m_id, f.name);
            break;
        default:
            nav->UpdateDocumentName(m_id, f.name, f.dateOnDocument);
            break;
        }
        return;
    }
    // The new item and what its template makes belong together.
    Database::Transaction tx(m_services.session.db());
    m_id = items.insertItem(m_level, m_parentId, f);
    QVector<CreatedItem> created;
    if (m_template && m_applyTemplate && m_template->currentIndex() >= 1 &&
        m_template->currentText() != QLatin1String("(none)"))
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
        m_result.Cancelled = false;
        m_result.Name = m_name->text();
        m_result.DateOnDocument = m_date->text();
        m_result.Description = m_description->toPlainText();
        m_result.Amount = QString::number(ItemRules::leadingNumber(m_amount->text()), 'g', 15);
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
