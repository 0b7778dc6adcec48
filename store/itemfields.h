#pragma once

#include <QDate>
#include <QString>
#include <QtGlobal>

namespace qmr {

// The editable fields of an item, as its dialog shows them. Which of them a level stores is
// decided by the level: cabinets keep password and storage, folders an email address,
// documents a date and an amount.
struct ItemFields
{
    QString name;
    QString description;
    QString password; // clear text; the store keeps its cipher
    int storage = 0;  // 0: names chosen by the program; 1: new images go to storagePath
    QString storagePath;
    QString email;
    QDate dateOnDocument; // null for none
    double amount = 0;
    bool hasAmount = false; // false: Null in the store
};

} // namespace qmr
