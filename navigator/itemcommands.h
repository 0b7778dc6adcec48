#pragma once

#include <QCoreApplication>

#include "core/commandtable.h"
#include "core/level.h"
#include "store/commandcontext.h"

namespace qmr {

class DrawerTemplates;
struct NewDocumentResult;

// New, Properties and renumbering of items and pages, drawer templates and sample cabinets.
// Each command finds its target through the context's command target.
class ItemCommands
{
    Q_DECLARE_TR_FUNCTIONS(qmr::ItemCommands)

public:
    ItemCommands(const CommandContext& context, DrawerTemplates& templates);
    // The context is held by reference: a temporary one would be gone before its use.
    ItemCommands(CommandContext&& context, DrawerTemplates& templates) = delete;

    void addTo(CommandTable& table);

    void newCabinet();
    // A new item below the target of `parentLevel`.
    void newChild(Level parentLevel);
    void newChildOf(Level parentLevel, qint32 parentId);
    // A new item beside the target of `level`, or inside it when it is the parent itself.
    void newSibling(Level level);
    // `id` -1: the target of the command.
    void properties(Level level, qint32 id = -1);
    void pageProperties();
    // Renumbers a document's pages 1, 2, 3 ... after asking.
    void repaginateDocument();
    // Gives the page with the focus a number of the user's choice.
    void renumberPage();
    void drawerTemplates();
    void createSampleCabinet();

private:
    void addNewDocument(qint32 folderId, const NewDocumentResult& result);

    const CommandContext& m_context;
    DrawerTemplates& m_templates;
};

} // namespace qmr
