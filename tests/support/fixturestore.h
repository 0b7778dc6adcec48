#pragma once

#include <QDate>
#include <QSize>
#include <QString>
#include <QVariant>

#include "core/apphome.h"
#include "store/database.h"

namespace qmr::test {

// Builds a store with cabinets, drawers, folders, documents and pages whose images are real
// JPEG files at their computed paths (with thumbnails).
class FixtureStore
{
public:
    // Opens (creating and upgrading) the store of `home`.
    explicit FixtureStore(const AppHome& home);
    Database& db() { return m_db; }
    void close() { m_db.close(); }

    qint32 cabinet(const QString& name, const QString& password = QString());
    qint32 drawer(qint32 cabinetId, const QString& name);
    qint32 folder(qint32 drawerId, const QString& name, const QString& email = QString());
    qint32 document(qint32 folderId, const QString& name, const QDate& date = QDate(),
                    const QVariant& amount = QVariant());
    // A page with a JPEG of the given size drawn with its number.
    qint32 page(qint32 documentId, int pageNumber, const QSize& size = QSize(850, 1100));
    // A page row only, with a stated number (Null when invalid QVariant).
    qint32 pageRow(qint32 documentId, const QVariant& pageNumber);

    // A small filled store: two cabinets (one locked with "secret"), drawers, folders,
    // documents with and without dates, and pages with images.
    void fillSample();

private:
    AppHome m_home;
    Database m_db;
};

} // namespace qmr::test
