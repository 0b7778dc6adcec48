#include "exchange/cabinetchoice.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QPushButton>

#include "store/session.h"

namespace qmr {

void fillCabinetChoice(QComboBox* box, QPushButton* ok, Session& session)
{
    box->clear();
    for (const ItemRow& cabinet : session.items().children(Level::Cabinet, -1))
        if (session.locks().isCabinetOpen(cabinet.id))
            box->addItem(cabinet.name, cabinet.id);
    // A locked cabinet is not offered; with nothing to offer there is nothing to start.
    const bool any = box->count() > 0;
    if (!any)
        box->addItem(
            QCoreApplication::translate("qmr::CabinetChoice", "No file cabinets to export"), -1);
    box->setEnabled(any);
    ok->setEnabled(any);
    box->setCurrentIndex(0);
}

void selectCabinetChoice(QComboBox* box, qint32 cabinetId)
{
    const int index = box->findData(cabinetId);
    if (index >= 0)
        box->setCurrentIndex(index);
}

qint32 chosenCabinet(const QComboBox* box)
{
    return box->currentIndex() < 0 ? -1 : box->currentData().toInt();
}

} // namespace qmr
