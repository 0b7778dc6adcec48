#pragma once

#include <QObject>

class QWidget;

namespace qmr {

// Gives a screen reader a name for every control that has no caption of its own, as the
// control comes on show: a field takes the text of the label beside it (or its tool tip), a
// button whose caption is a sign ("...", "|<") takes its tool tip. A name set by the code
// stays. Installed on the application, it serves every window the program opens.
class AccessibleNames : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    // The name a person hears for `control` when it has none worth reading, or "" when it
    // has one or nothing better is known.
    static QString missingName(QWidget* control);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace qmr
