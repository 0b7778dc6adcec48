#include "navigator/itemcommands.h"

#include "core/commandtarget.h"
#include "core/navigatorcallbacks.h"
#include "core/progress.h"
#include "core/prompter.h"
#include "dialogs/itemdialog.h"
#include "dialogs/pagenumberdialog.h"
#include "dialogs/pagepropertiesdialog.h"
#include "filing/cabinetopener.h"
#include "store/commandguard.h"
#include "store/itemrules.h"
#include "store/session.h"
#include "store/storeerror.h"
#include "templates/drawertemplates.h"
#include "templates/samplecabinets.h"
#include "templates/sampledialog.h"
#include "templates/templateeditor.h"

namespace qmr {

ItemCommands::ItemCommands(const CommandContext& context, DrawerTemplates& templates)
    : m_context(context), m_templates(templates)
{
}

void ItemCommands::addTo(CommandTable& table)
{
    table.insert(QStringLiteral("mnuPopupRootNewFileCabinet"), [this] { newCabinet(); });
    table.insert(QStringLiteral("mnuPopupCabinetNewCabinet"), [this] { newCabinet(); });
    // Each level's menu adds a sibling ("New Drawer" on a drawer) and a child ("New Folder"
    // on a drawer), and shows its properties.
    for (const Level level : {Level::Cabinet, Level::Drawer, Level::Folder, Level::Document}) {
        const QString menu = QStringLiteral("mnuPopup") + QLatin1String(levelInfo(level).word);
        const Level child = *childLevel(level);
        if (level != Level::Cabinet)
            table.insert(menu + QStringLiteral("New") + QLatin1String(levelInfo(level).word),
                         [this, level] { newSibling(level); });
        if (child != Level::Page)
            table.insert(menu + QStringLiteral("New") + QLatin1String(levelInfo(child).word),
                         [this, level] { newChild(level); });
        table.insert(menu + QStringLiteral("Properties"), [this, level] { properties(level); });
    }
    table.insert(QStringLiteral("mnuPopupPageProperties"), [this] { pageProperties(); });
    table.insert(QStringLiteral("mnuPopupDocumentRepaginate"), [this] { repaginateDocument(); });
    table.insert(QStringLiteral("mnuPopupPageRenumber"), [this] { renumberPage(); });
    table.insert(QStringLiteral("mnuToolsDrawerTemplates"), [this] { drawerTemplates(); });
    table.insert(QStringLiteral("mnuToolsCreateSampleCabinet"), [this] { createSampleCabinet(); });
}

void ItemCommands::newCabinet()
{
    guarded(m_context.prompter, [this] {
        ItemDialog dialog(Level::Cabinet, m_context, m_context.parent);
        dialog.setAdd(-1);
        dialog.exec();
    });
    m_context.target->restoreFocus();
}

void ItemCommands::addNewDocument(qint32 folderId, const NewDocumentResult& result)
{
    ItemFields fields;
    fields.name = result.name;
    fields.description = result.description;
    fields.dateOnDocument = ItemRules::dateOrZero(result.dateOnDocument);
    fields.amount = result.amount.toDouble();
    fields.hasAmount = true;
    const qint32 id = m_context.session.items().insertItem(Level::Document, folderId, fields);
    if (m_context.navigator)
        m_context.navigator->itemAdded(
            CreatedItem{Level::Document, folderId, id, fields.name, fields.dateOnDocument});
}

void ItemCommands::newChild(Level parentLevel)
{
    newChildOf(parentLevel, m_context.target->targetId(parentLevel));
}

void ItemCommands::newChildOf(Level parentLevel, qint32 parentId)
{
    guarded(m_context.prompter, [&] {
        const Level level = *childLevel(parentLevel);
        if (parentId < 0 || level == Level::Page)
            return;
        if (level == Level::Document) {
            ItemDialog dialog(Level::Document, m_context, m_context.parent, true);
            if (dialog.exec() == QDialog::Accepted && !dialog.newDocument().cancelled)
                addNewDocument(parentId, dialog.newDocument());
            return;
        }
        ItemDialog dialog(level, m_context, m_context.parent);
        dialog.setAdd(parentId);
        if (level == Level::Drawer)
            dialog.populateTemplates(
                m_templates.names(),
                [this](const QString& name, qint32 drawerId, ItemStore& items) {
                    return m_templates.applyDrawerTemplate(name, drawerId, items);
                });
        dialog.exec();
    });
    m_context.target->restoreFocus();
}

void ItemCommands::newSibling(Level level)
{
    const Level parent = *parentLevel(level);
    const CommandTarget& target = *m_context.target;
    const SelectionRecord& record = target.record();
    qint32 parentId = -1;
    guarded(m_context.prompter, [&] {
        if (record.idOf(level) != -1) {
            parentId = record.parentId;
        } else if (record.idOf(parent) != -1) {
            parentId = record.idOf(parent);
        } else {
            // The selected item of the control that spoke last: a sibling's parent, or the
            // parent itself.
            const NodeKey key = target.contextKey();
            if (key.level() == level)
                parentId = m_context.session.items().parentOf(level, key.id());
            else if (key.level() == parent)
                parentId = key.id();
        }
    });
    if (parentId >= 0)
        newChildOf(parent, parentId);
}

void ItemCommands::properties(Level level, qint32 id)
{
    guarded(m_context.prompter, [&] {
        const qint32 target = id >= 0 ? id : m_context.target->targetId(level);
        if (target < 0)
            return;
        if (level == Level::Cabinet && !CabinetOpener::openCabinet(m_context, target))
            return;
        ItemDialog dialog(level, m_context, m_context.parent);
        if (dialog.setEdit(target))
            dialog.exec();
    });
    m_context.target->restoreFocus();
}

void ItemCommands::pageProperties()
{
    const QVector<qint32> ids = m_context.target->selectedPageIds();
    if (ids.isEmpty())
        return;
    guarded(m_context.prompter, [&] {
        PagePropertiesDialog dialog(m_context.session.db(), m_context.parent);
        if (ids.size() == 1)
            dialog.populate(ids.first());
        else
            dialog.populateMultiple(ids);
        dialog.exec();
    });
}

void ItemCommands::repaginateDocument()
{
    guarded(m_context.prompter, [this] {
        const qint32 id = m_context.target->targetId(Level::Document);
        const ItemRow doc = m_context.session.items().item(Level::Document, id);
        if (doc.id < 0)
            return;
        if (!m_context.prompter.confirm(tr("Renumber all pages in '%1'?").arg(doc.name)))
            return;
        try {
            m_context.session.pages().repaginateDocument(id, doc.name, m_context.progress);
        } catch (const StoreError&) {
            m_context.progress.end(); // the numbers stay as they were
            throw;
        }
        if (m_context.navigator)
            m_context.navigator->refreshPages(id);
    });
}

void ItemCommands::renumberPage()
{
    const qint32 pageId = m_context.target->view().currentPageId();
    if (pageId < 0)
        return;
    guarded(m_context.prompter, [&] {
        const std::optional<PageRow> page = m_context.session.pages().page(pageId);
        if (!page)
            return;
        PageNumberDialog dialog(page->pageNumber, m_context.parent);
        dialog.exec();
        if (dialog.reply() == -1)
            return;
        m_context.session.pages().setPageNumber(pageId, dialog.reply());
        // The pane's text changes; the order stays until the pane is shown again.
        if (m_context.navigator)
            m_context.navigator->itemRenamed(
                Level::Page, pageId, tr("Page ") + QString::number(dialog.reply()), QDate());
    });
}

void ItemCommands::drawerTemplates()
{
    TemplateEditor editor(m_templates, m_context.prompter, m_context.parent);
    editor.exec();
}

void ItemCommands::createSampleCabinet()
{
    SampleCabinets samples(m_context.session.home(), m_context.session.db(), m_context.navigator);
    if (!samples.ensureFile()) {
        m_context.prompter.tell(tr("Missing file '%1'.").arg(samples.filePath()));
        return;
    }
    SampleDialog dialog(samples, m_context.prompter, m_context.choosers, m_context.parent);
    dialog.exec();
}

} // namespace qmr
