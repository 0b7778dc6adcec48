#include <QFile>

#include "fuzzstore.h"
#include "store/schema.h"

namespace qmr::fuzz {

FuzzStore::FuzzStore() : m_home(m_dir.path())
{
    StoreSchema::openDatabase(m_db, m_home);
    m_db.execute(QStringLiteral("PRAGMA synchronous=OFF"));
}

void FuzzStore::writeFile(const QString& name, const uint8_t* data, size_t size) const
{
    QFile file(m_home.file(name));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(reinterpret_cast<const char*>(data), qint64(size)) != qint64(size))
        broken("the input could not be written to the home");
}

void FuzzStore::clear()
{
    Database::Transaction tx(m_db);
    for (const char* table : {"Page", "Document", "Folder", "Drawer", "Cabinet"})
        m_db.execute(QStringLiteral("DELETE FROM %1").arg(QLatin1String(table)));
    tx.commit();
}

} // namespace qmr::fuzz
