#include "navigator/renamecontroller.h"

#include <QCoreApplication>
#include <QLineEdit>
#include <QStyledItemDelegate>
#include <functional>

#include "core/commandtarget.h"
#include "core/navigatorcallbacks.h"
#include "core/prompter.h"
#include "navigator/containerlist.h"
#include "navigator/navtree.h"
#include "store/commandguard.h"
#include "store/itemrules.h"
#include "store/session.h"

namespace qmr {

namespace {

// Gives a label an editor only while the controller has started an edit, and hands what was
// typed back to it instead of writing it into the control.
class LabelDelegate : public QStyledItemDelegate
{
public:
    LabelDelegate(std::function<bool()> editing, std::function<void(const QString&)> commit,
                  QObject* parent)
        : QStyledItemDelegate(parent), m_editing(std::move(editing)), m_commit(std::move(commit))
    {
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override
    {
        return m_editing() ? QStyledItemDelegate::createEditor(parent, option, index) : nullptr;
    }
    void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex&) const override
    {
        if (const auto* line = qobject_cast<QLineEdit*>(editor))
            m_commit(line->text());
    }

private:
    std::function<bool()> m_editing;
    std::function<void(const QString&)> m_commit;
};

QString clashMessage(Level level, const QString& name)
{
    static const char* const starts[] = {
        QT_TRANSLATE_NOOP("qmr::RenameController", "A file cabinet named '"),
        QT_TRANSLATE_NOOP("qmr::RenameController", "A drawer named '"),
        QT_TRANSLATE_NOOP("qmr::RenameController", "A folder named '")};
    return QCoreApplication::translate("qmr::RenameController", starts[static_cast<int>(level)]) +
           name + QCoreApplication::translate("qmr::RenameController", "' already exists.");
}

} // namespace

RenameController::RenameController(const CommandContext& context, NavTree& tree,
                                   ContainerList& list, QObject* parent)
    : QObject(parent), m_context(context), m_tree(tree), m_list(list)
{
    for (const ContextSource control : {ContextSource::Tree, ContextSource::List}) {
        auto* delegate = new LabelDelegate(
            [this] { return isEditing(); },
            [this, control](const QString& text) {
                // The tests may ask questions: they run once the editor has closed.
                const NodeKey key = m_key;
                QMetaObject::invokeMethod(
                    this, [this, control, key, text] { afterLabelEdit(control, key, text); },
                    Qt::QueuedConnection);
            },
            this);
        view(control)->setItemDelegate(delegate);
        connect(delegate, &QAbstractItemDelegate::closeEditor, this, [this] { endEdit(); });
    }
}

QAbstractItemView* RenameController::view(ContextSource control) const
{
    return control == ContextSource::Tree ? static_cast<QAbstractItemView*>(&m_tree) : &m_list;
}

void RenameController::addTo(CommandTable& table)
{
    for (const Level level : {Level::Cabinet, Level::Drawer, Level::Folder, Level::Document})
        table.insert(QStringLiteral("mnuPopup") + QLatin1String(levelInfo(level).word) +
                         QStringLiteral("Rename"),
                     [this, level] { rename(level); });
}

void RenameController::rename(Level level)
{
    const CommandTarget& target = *m_context.target;
    if (target.record().idOf(level) == -1 && target.source() != ContextSource::Tree)
        startListEdit();
    else
        startTreeEdit();
}

bool RenameController::startTreeEdit()
{
    const NodeKey key = NodeKey::parse(m_tree.selectedKey());
    // Roots and found copies keep their labels.
    if (key.isEmpty() || key.isRoot() || key.isFoundRoot() || key.foundLevel())
        return false;
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page)
        return false;
    bool open = true;
    if (*level == Level::Cabinet)
        guarded(m_context.prompter,
                [&] { open = m_context.session.locks().isCabinetOpen(key.id()); });
    return open && startEdit(ContextSource::Tree, key);
}

bool RenameController::startListEdit()
{
    const NodeKey key = m_list.selectedKey();
    if (key.isEmpty() || key.foundLevel() || !m_list.isVisible())
        return false;
    // The lock test asks about the number of the tree's selected node, whatever its level:
    // that is the rule of this edit. The root has no number, and nothing is edited under it.
    const NodeKey treeKey = NodeKey::parse(m_tree.selectedKey());
    if (treeKey.id() < 0)
        return false;
    bool open = false;
    guarded(m_context.prompter,
            [&] { open = m_context.session.locks().isCabinetOpen(treeKey.id()); });
    return open && startEdit(ContextSource::List, key);
}

void RenameController::setEditable(ContextSource control, const NodeKey& key, bool editable)
{
    if (control == ContextSource::Tree) {
        m_tree.setNodeEditable(key.text(), editable);
    } else if (QListWidgetItem* item = m_list.itemOf(key)) {
        item->setFlags(editable ? item->flags() | Qt::ItemIsEditable
                                : item->flags() & ~Qt::ItemIsEditable);
    }
}

bool RenameController::startEdit(ContextSource control, const NodeKey& key)
{
    if (isEditing() || !view(control)->isVisible())
        return false;
    m_control = control;
    m_key = key;
    setEditable(control, key, true);
    emit editing(true);
    if (control == ContextSource::Tree)
        m_tree.editNode(key.text());
    else
        m_list.editItem(m_list.itemOf(key));
    // The edited item is the selected one, the view's current item.
    if (!view(control)->indexWidget(view(control)->currentIndex())) {
        endEdit(); // the control opened no editor
        return false;
    }
    return true;
}

void RenameController::endEdit()
{
    if (!m_control)
        return;
    const ContextSource control = *m_control;
    setEditable(control, m_key, false);
    m_control.reset();
    emit editing(false);
    view(control)->setFocus();
}

bool RenameController::afterLabelEdit(ContextSource control, const NodeKey& key, QString text)
{
    if (key.isRoot() || key.isFoundRoot())
        return false;
    const std::optional<Level> level = key.level();
    if (!level || *level == Level::Page)
        return false;
    bool written = false;
    guarded(m_context.prompter, [&] {
        if (ItemRules::containsBadCharacters(text)) {
            m_context.prompter.tell(ItemRules::badCharactersMessage());
            text = ItemRules::stripBadCharacters(text);
        }
        text = text.trimmed();
        if (text.isEmpty())
            return;
        ItemStore& items = m_context.session.items();
        if (*level != Level::Document) {
            const bool clash =
                control == ContextSource::List && *level != Level::Cabinet
                    ? items.nameTakenAnywhere(*level, text, key.id())
                    : items.nameTaken(*level, items.parentOf(*level, key.id()), text, key.id());
            if (clash) {
                m_context.prompter.tell(clashMessage(*level, text));
                return;
            }
        }
        items.renameItem(*level, key.id(), text);
        written = true;
        // A document's node shows the name alone until its date is written to it again.
        if (m_context.navigator)
            m_context.navigator->itemRenamed(*level, key.id(), text, QDate());
    });
    view(control)->setFocus();
    return written;
}

} // namespace qmr
