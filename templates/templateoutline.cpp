#include "templates/templateoutline.h"

namespace qmr {

QVector<TemplateNode> TemplateOutline::read(const QStringList& lines)
{
    QVector<TemplateNode> nodes;
    int drawer = -1;
    int folder = -1;
    for (const QString& line : lines) {
        const QString key = line.left(3).toUpper();
        const QString name = line.mid(4);
        if (key == QLatin1String("DRW")) {
            nodes << TemplateNode{key, name, -1};
            drawer = int(nodes.size()) - 1;
            folder = -1;
        } else if (key == QLatin1String("FLD") && drawer >= 0) {
            nodes << TemplateNode{key, name, drawer};
            folder = int(nodes.size()) - 1;
        } else if (key == QLatin1String("DOC") && (folder >= 0 || drawer >= 0)) {
            // A document straight below a drawer is kept where it stands, so that what was
            // read is written back; applying the template passes it over.
            nodes << TemplateNode{key, name, folder >= 0 ? folder : drawer};
        }
    }
    return nodes;
}

QStringList TemplateOutline::write(const QVector<TemplateNode>& nodes)
{
    QStringList lines;
    for (const TemplateNode& node : nodes) {
        if (node.key == QLatin1String("DRW"))
            lines << QString();
        lines << node.key + QLatin1Char('=') + node.name;
    }
    return lines;
}

} // namespace qmr
