#pragma once

#include <QVector>

#include "core/commandtable.h"
#include "core/level.h"
#include "store/commandcontext.h"

namespace qmr {

struct PageRow;

// The Delete entries of the level menus: asks first, removes the item with everything below it
// and the files of its pages (a cabinet only after its password), shows the progress, and
// takes the item's nodes and list items away.
class DeleteCommand
{
public:
    explicit DeleteCommand(const CommandContext& context);
    // The context is held by reference: a temporary one would be gone before its use.
    DeleteCommand(CommandContext&& context) = delete;

    void addTo(CommandTable& table);

    // The item of the level that the command target names.
    void deleteItem(Level level);
    // From the page list its selection; from the tree or the container list the one page
    // with the focus in the page list.
    void deletePages();

    // The name a page goes by in the questions: its file's name for a shortcut or a page
    // numbered 0 that has a file of its own, else "Page " and its number.
    static QString pageName(const PageRow& page);

private:
    void deletePageIds(const QVector<qint32>& ids);

    const CommandContext& m_context;
};

} // namespace qmr
