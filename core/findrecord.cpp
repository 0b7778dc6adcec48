#include "core/findrecord.h"

namespace qmr {

void FindRecord::initFindDefaults()
{
    keywords.clear();
    pageWords.clear();
    matchAny = 1;
    matchAll = 0;
    const QString all = QStringLiteral("(All)");
    cabinetName = drawerName = folderName = all;
    defaultFrom = QDate(1901, 1, 1);
    defaultThru = QDate(2099, 12, 31);
    scanFrom = docFrom = defaultFrom;
    scanThru = docThru = defaultThru;
    fileSizeFrom = fileSizeThru = 0;
    amountFrom = amountThru = 0;
}

} // namespace qmr
