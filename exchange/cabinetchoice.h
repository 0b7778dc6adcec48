#pragma once

#include <QtGlobal>

class QComboBox;
class QPushButton;

namespace qmr {

class Session;

// Fills the cabinet list of the export and import dialogs with the cabinets open in this run,
// each with its id, and selects the first. With none to offer the list reads "No file
// cabinets to export" and stands disabled, and so does `ok`.
void fillCabinetChoice(QComboBox* box, QPushButton* ok, Session& session);
// Selects the cabinet when the list offers it.
void selectCabinetChoice(QComboBox* box, qint32 cabinetId);
// The chosen cabinet's id, -1 for none.
qint32 chosenCabinet(const QComboBox* box);

} // namespace qmr
