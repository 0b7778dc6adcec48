// Sample.txt as the program reads it: the list of samples, and a sample made into a cabinet
// in a real store.

#include "fuzzstore.h"
#include "store/itemstore.h"
#include "store/storeerror.h"
#include "templates/samplecabinets.h"

using namespace qmr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static fuzz::FuzzStore store;
    store.writeFile(QStringLiteral("Sample.txt"), data, size);

    SampleCabinets samples(store.home(), store.db(), nullptr);
    const QStringList names = samples.sampleNames();
    ItemStore items(store.db());
    for (int i = 0; i < qMin(3, int(names.size())); ++i) {
        const int before = items.count(Level::Cabinet);
        try {
            const qint32 id = samples.createSampleCabinet(names.at(i));
            if (items.item(Level::Cabinet, id).name != names.at(i))
                fuzz::broken("a sample cabinet's name is not stored as read");
        } catch (const StoreError&) {
            // Refused (a name too long): nothing of the sample may stay behind.
            if (items.count(Level::Cabinet) != before)
                fuzz::broken("a refused sample left a cabinet behind");
        }
    }
    // Every item hangs below an item that exists.
    const int dangling =
        store.db()
            .scalar(QStringLiteral(
                "SELECT (SELECT COUNT(*) FROM Drawer WHERE CabinetId NOT IN "
                "(SELECT CabinetId FROM Cabinet)) + (SELECT COUNT(*) FROM Folder WHERE DrawerId "
                "NOT IN (SELECT DrawerId FROM Drawer)) + (SELECT COUNT(*) FROM Document WHERE "
                "FolderId NOT IN (SELECT FolderId FROM Folder))"))
            .toInt();
    if (dangling != 0)
        fuzz::broken("a sample item has no parent");
    store.clear();
    return 0;
}
