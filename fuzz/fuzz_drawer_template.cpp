// Drawer.txt as the program reads it: the template names at start, the outline in the
// template editor, and a template applied to a new drawer in a real store.

#include <QSet>

#include "core/textfile.h"
#include "fuzzstore.h"
#include "store/itemstore.h"
#include "store/storeerror.h"
#include "templates/drawertemplates.h"
#include "templates/templateoutline.h"

using namespace qmr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static fuzz::FuzzStore store;
    store.writeFile(QStringLiteral("Drawer.txt"), data, size);

    DrawerTemplates templates(store.home());
    templates.loadDrawerTemplates();

    // The editor's outline: what it writes, read again, is the same outline.
    const QStringList lines = TextFile::readLines(templates.filePath()).value_or(QStringList());
    const QVector<TemplateNode> nodes = TemplateOutline::read(lines);
    for (int i = 0; i < nodes.size(); ++i)
        if (nodes[i].parent >= i || (nodes[i].parent < 0) != (nodes[i].key == "DRW"))
            fuzz::broken("a template node's parent is not a node before it");
    const QVector<TemplateNode> again = TemplateOutline::read(TemplateOutline::write(nodes));
    if (again.size() != nodes.size())
        fuzz::broken("the written outline reads back with another number of nodes");
    for (int i = 0; i < nodes.size(); ++i)
        if (again[i].key != nodes[i].key || again[i].parent != nodes[i].parent ||
            again[i].name != nodes[i].name)
            fuzz::broken("the written outline reads back differently");

    // A few templates applied to a new drawer, as the New Drawer command does it.
    ItemStore items(store.db());
    const qint32 cabinet = items.insertItem(Level::Cabinet, -1, QStringLiteral("Cabinet"));
    for (int i = 0; i < qMin(3, templates.count()); ++i) {
        Database::Transaction tx(store.db());
        const qint32 drawer = items.insertItem(Level::Drawer, cabinet, QStringLiteral("Drawer"));
        try {
            QSet<qint32> known{drawer};
            for (const CreatedItem& c :
                 templates.applyDrawerTemplate(templates.names().at(i), drawer, items)) {
                if (!known.contains(c.parentId) || items.parentOf(c.level, c.id) != c.parentId)
                    fuzz::broken("a template item hangs below an item the template did not make");
                if (items.item(c.level, c.id).name != c.name)
                    fuzz::broken("a template item's name is not stored as read");
                known.insert(c.id);
            }
            tx.commit();
        } catch (const StoreError&) {
            // A name the store refuses (too long) ends the command, which rolls back.
        }
    }
    store.clear();
    return 0;
}
