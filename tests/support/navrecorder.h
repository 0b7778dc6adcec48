#pragma once

#include <QStringList>

#include "core/navigatorcallbacks.h"
#include "core/nodekey.h"

namespace qmr::test {

// Records what the navigator is told, in order, as short texts: "DRW5 Bank<1" for an added
// drawer below cabinet 1, "=FLD3 Taxes" for a rename, "-DOC4" for a removal, "SHOWCAB2",
// "PAGES7", "OPEN2".
class NavRecorder : public NavigatorCallbacks
{
public:
    void itemAdded(const CreatedItem& c) override
    {
        const QString text = NodeKey::of(c.level, c.id).prefix() + key(c.id, c.name);
        calls << (c.level == Level::Cabinet
                      ? text
                      : QString("%1<%2%3").arg(text).arg(c.parentId).arg(date(c.date)));
    }
    void itemRenamed(Level level, qint32 id, const QString& n, const QDate& d) override
    {
        calls << "=" + NodeKey::of(level, id).prefix() + key(id, n) + date(d);
    }
    void itemRemoved(Level level, qint32 id) override
    {
        calls << "-" + NodeKey::of(level, id).text();
    }
    void showChildren(Level level, qint32 id) override
    {
        calls << "SHOW" + NodeKey::of(level, id).text();
    }
    void refreshPages(qint32 documentId, qint32) override
    {
        calls << QString("PAGES%1").arg(documentId);
    }
    void cabinetOpened(qint32 id) override { calls << QString("OPEN%1").arg(id); }

    static QString key(qint32 id, const QString& n) { return QString("%1 %2").arg(id).arg(n); }
    static QString date(const QDate& d)
    {
        return d.isValid() ? d.toString(" @yyyy-MM-dd") : QString();
    }
    QStringList calls;
};

} // namespace qmr::test
