#include "dialogs/boxprompter.h"

#include <QMessageBox>

namespace qmr {

Prompter::Answer BoxPrompter::ask(const QString& text, Buttons buttons)
{
    QMessageBox box(m_parent);
    box.setWindowTitle(caption());
    box.setText(text);
    switch (buttons) {
    case Buttons::Ok:
        box.setIcon(QMessageBox::Information);
        box.setStandardButtons(QMessageBox::Ok);
        box.setEscapeButton(QMessageBox::Ok);
        break;
    case Buttons::YesNo:
        box.setIcon(QMessageBox::Question);
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setEscapeButton(QMessageBox::No);
        break;
    case Buttons::YesNoCancel:
        box.setIcon(QMessageBox::Question);
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        box.setEscapeButton(QMessageBox::Cancel);
        break;
    case Buttons::OkCancel:
        box.setIcon(QMessageBox::Information);
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        box.setEscapeButton(QMessageBox::Cancel);
        break;
    }
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Ok:
        return Answer::Ok;
    default:
        // Closing the box is the mildest answer it offers.
        return buttons == Buttons::Ok      ? Answer::Ok
               : buttons == Buttons::YesNo ? Answer::No
                                           : Answer::Cancel;
    }
}

} // namespace qmr
