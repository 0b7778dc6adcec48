#pragma once

#include "core/navigatorcallbacks.h"

#include <QStringList>

namespace qmr::test {

// Records what the navigator is told, in order, as short texts ("DRW5 Bank<1").
class NavRecorder : public NavigatorCallbacks
{
public:
    void AddCabinetToNavTree(qint32 id, const QString& n) override { calls << "CAB" + key(id, n); }
    void AddDrawerToNavTree(qint32 p, qint32 id, const QString& n) override
    {
        calls << QString("DRW%1<%2").arg(key(id, n)).arg(p);
    }
    void AddFolderToNavTree(qint32 p, qint32 id, const QString& n) override
    {
        calls << QString("FLD%1<%2").arg(key(id, n)).arg(p);
    }
    void AddDocumentToNavTree(qint32 p, qint32 id, const QString& n, const QDate& d) override
    {
        calls << QString("DOC%1<%2%3").arg(key(id, n)).arg(p).arg(date(d));
    }
    void UpdateCabinetName(qint32 id, const QString& n) override { calls << "=CAB" + key(id, n); }
    void UpdateDrawerName(qint32 id, const QString& n) override { calls << "=DRW" + key(id, n); }
    void UpdateFolderName(qint32 id, const QString& n) override { calls << "=FLD" + key(id, n); }
    void UpdateDocumentName(qint32 id, const QString& n, const QDate& d) override
    {
        calls << "=DOC" + key(id, n) + date(d);
    }
    void ShowDrawersInListView(qint32 id) override { calls << QString("SHOW%1").arg(id); }
    void RebuildCabinetNode(qint32 id, const QString& n) override
    {
        calls << "REBUILD" + key(id, n);
    }

    static QString key(qint32 id, const QString& n) { return QString("%1 %2").arg(id).arg(n); }
    static QString date(const QDate& d)
    {
        return d.isValid() ? d.toString(" @yyyy-MM-dd") : QString();
    }
    QStringList calls;
};

} // namespace qmr::test
