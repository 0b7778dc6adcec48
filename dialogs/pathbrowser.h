#pragma once

class QLineEdit;

namespace qmr {

class Choosers;
class Settings;

// Opens the directory chooser for a text box: it starts at the box's directory, or at the
// last one picked (PathSelect); a picked directory goes into the box and into PathSelect.
// Cancel leaves the box as it was.
void browseForPath(QLineEdit* box, Settings& settings, Choosers& choosers);

} // namespace qmr
