#include "templates/templateeditor.h"

#include <QIcon>
#include <QPushButton>
#include <QTreeWidget>

#include "core/nameorder.h"
#include "core/prompter.h"
#include "core/textfile.h"
#include "resources/appresources.h"
#include "templates/drawertemplates.h"
#include "templates/outlinefile.h"
#include "templates/templateoutline.h"
#include "ui_templateeditor.h"

namespace qmr {

namespace {

constexpr int kKeyRole = Qt::UserRole + 1;
const char* const kKinds[] = {"DRW", "FLD", "DOC"};

int kindOf(const QString& key)
{
    for (int i = 0; i < 3; ++i)
        if (key.startsWith(QLatin1String(kKinds[i])))
            return i;
    return -1;
}

QIcon kindIcon(int kind)
{
    // The same pictures as the main tree.
    static const char* const icons[] = {"drawer", "folder", "document"};
    return QIcon(AppResources::iconPath(QLatin1String(icons[qBound(0, kind, 2)])));
}

// Names sort as in the main tree: without regard to case.
class TemplateItem : public QTreeWidgetItem
{
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem& other) const override
    {
        return nameLess(text(0), other.text(0));
    }
};

} // namespace

TemplateEditor::TemplateEditor(DrawerTemplates& templates, Prompter& prompter, QWidget* parent)
    : QDialog(parent), m_templates(templates), m_prompter(prompter),
      m_ui(std::make_unique<Ui::TemplateEditor>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    m_tree = m_ui->tvwMain;
    m_tree->setSortingEnabled(true);
    m_tree->sortByColumn(0, Qt::AscendingOrder);
    m_tree->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    m_addChild = m_ui->cmdAddChild;
    m_addSibling = m_ui->cmdAddSibling;
    m_removeSibling = m_ui->cmdRemoveSibling;
    connect(m_addChild, &QPushButton::clicked, this, &TemplateEditor::cmdAddChild);
    connect(m_removeSibling, &QPushButton::clicked, this, &TemplateEditor::cmdRemoveSibling);
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &TemplateEditor::cmdOK);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, [this] { updateButtons(); });
    resize(480, 420);
    load();
}

TemplateEditor::~TemplateEditor() = default;

QTreeWidgetItem* TemplateEditor::addNode(QTreeWidgetItem* parent, const QString& key,
                                         const QString& text)
{
    const int kind = kindOf(key);
    auto* item = new TemplateItem(parent);
    item->setText(0, text);
    item->setIcon(0, kindIcon(kind));
    item->setData(0, kKeyRole, key + QString::number(++m_counters[kind]));
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    item->setExpanded(true);
    m_created << item;
    return item;
}

void TemplateEditor::load()
{
    m_tree->clear();
    m_created.clear();
    m_root = new TemplateItem(m_tree);
    m_root->setText(0, tr("Drawers"));
    m_root->setIcon(0, kindIcon(0));
    m_root->setData(0, kKeyRole, QStringLiteral("ROOT"));
    m_root->setExpanded(true);
    QVector<QTreeWidgetItem*> made;
    for (const TemplateNode& node :
         TemplateOutline::read(TextFile::readLines(m_templates.filePath()).value_or(QStringList())))
        made << addNode(node.parent < 0 ? m_root : made.at(node.parent), node.key, node.name);
    m_tree->setCurrentItem(m_root);
    updateButtons();
}

void TemplateEditor::updateButtons()
{
    static const char* const addCaptions[] = {QT_TR_NOOP("Add Folder"), QT_TR_NOOP("Add Document"),
                                              nullptr};
    static const char* const removeCaptions[] = {
        QT_TR_NOOP("Remove Drawer"), QT_TR_NOOP("Remove Folder"), QT_TR_NOOP("Remove Document")};
    m_addSibling->setEnabled(false); // a sibling is made from the parent node
    QTreeWidgetItem* item = m_tree->currentItem();
    if (!item || item == m_root) {
        m_addChild->setText(tr("Add Drawer"));
        m_addChild->setEnabled(true);
        m_removeSibling->setEnabled(false);
        return;
    }
    const int kind = kindOf(item->data(0, kKeyRole).toString());
    if (addCaptions[kind]) {
        m_addChild->setText(tr(addCaptions[kind]));
        m_addChild->setEnabled(true);
    } else {
        m_addChild->setEnabled(false);
    }
    m_removeSibling->setText(tr(removeCaptions[kind]));
    m_removeSibling->setEnabled(true);
}

void TemplateEditor::cmdAddChild()
{
    QTreeWidgetItem* parent = m_tree->currentItem() ? m_tree->currentItem() : m_root;
    const int kind = parent == m_root ? 0 : kindOf(parent->data(0, kKeyRole).toString()) + 1;
    if (kind > 2)
        return;
    static const char* const texts[] = {"New Drawer", "New Folder", "New Document"};
    QTreeWidgetItem* item =
        addNode(parent, QLatin1String(kKinds[kind]), QLatin1String(texts[kind]));
    parent->setExpanded(true);
    m_tree->setCurrentItem(item);
    updateButtons();
    m_tree->editItem(item, 0);
}

void TemplateEditor::forget(QTreeWidgetItem* item)
{
    for (int i = 0; i < item->childCount(); ++i)
        forget(item->child(i));
    m_created.removeAll(item);
}

void TemplateEditor::cmdRemoveSibling()
{
    QTreeWidgetItem* item = m_tree->currentItem();
    if (!item || item == m_root)
        return;
    forget(item);
    delete item;
    updateButtons();
}

void TemplateEditor::cmdOK()
{
    QVector<TemplateNode> nodes;
    for (const QTreeWidgetItem* item : m_created)
        nodes << TemplateNode{item->data(0, kKeyRole).toString().left(3), item->text(0), -1};
    setCursor(Qt::WaitCursor);
    const bool written =
        TextFile::writeLines(m_templates.filePath(), TemplateOutline::write(nodes));
    unsetCursor();
    if (!written) {
        m_prompter.tell(tr("Cannot write the file '%1'.").arg(m_templates.filePath()));
        return;
    }
    m_templates.loadDrawerTemplates();
    accept();
}

} // namespace qmr
