#pragma once

#include <QDate>
#include <QString>
#include <QtGlobal>

namespace qmr {

// The criteria of the last search; lives for the run only, never in the settings.
struct FindRecord
{
    QString keywords;
    QString pageWords; // "Words on the pages"
    int matchAny = 1;
    int matchAll = 0;
    QString cabinetName;
    QString drawerName;
    QString folderName;
    QDate scanFrom;
    QDate scanThru;
    QDate docFrom;
    QDate docThru;
    qint32 fileSizeFrom = 0;
    qint32 fileSizeThru = 0;
    double amountFrom = 0;
    double amountThru = 0;
    QDate defaultFrom;
    QDate defaultThru;

    FindRecord() { initFindDefaults(); }
    // Resets every field: no keywords, match any word, "(All)" places, the widest dates.
    void initFindDefaults();
};

} // namespace qmr
