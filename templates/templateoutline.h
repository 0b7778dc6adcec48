#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace qmr {

// Drawer.txt as the template editor sees it: a key taken from the first three characters in
// upper case, a name from the fifth character on, and levels by the order of the lines.
struct TemplateNode
{
    QString key; // "DRW", "FLD" or "DOC"
    QString name;
    int parent; // index of the parent node, -1 for a drawer
};

class TemplateOutline
{
public:
    // Nodes in file order; a folder with no drawer before it, or a document with neither a
    // folder nor a drawer, has nowhere to go and is left out. A document that follows a drawer
    // line directly hangs below the drawer.
    static QVector<TemplateNode> read(const QStringList& lines);
    // Lines in the order given: an empty line ahead of each drawer, then "KEY=name".
    static QStringList write(const QVector<TemplateNode>& nodesInCreationOrder);
};

} // namespace qmr
