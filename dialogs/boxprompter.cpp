#include "dialogs/boxprompter.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace qmr {

namespace {

QMessageBox::StandardButton buttonOf(Prompter::Answer answer, Prompter::Buttons buttons)
{
    const bool saving = buttons == Prompter::Buttons::SaveDiscardCancel;
    switch (answer) {
    case Prompter::Answer::Yes:
        return saving ? QMessageBox::Save : QMessageBox::Yes;
    case Prompter::Answer::No:
        return saving ? QMessageBox::Discard : QMessageBox::No;
    case Prompter::Answer::Cancel:
        return QMessageBox::Cancel;
    case Prompter::Answer::Ok:
        break;
    }
    return QMessageBox::Ok;
}

} // namespace

Prompter::Answer BoxPrompter::ask(const QString& text, Buttons buttons)
{
    return show(text, buttons, std::nullopt);
}

Prompter::Answer BoxPrompter::askWithDefault(const QString& text, Buttons buttons,
                                             Answer defaultAnswer)
{
    return show(text, buttons, defaultAnswer);
}

Prompter::Answer BoxPrompter::show(const QString& text, Buttons buttons,
                                   std::optional<Answer> defaultAnswer)
{
    // The box stands over the window the person works in (a viewer, a dialog): closing it
    // gives that window back, where a box of the main window would raise the main window over
    // it. The box is the parent's child, so it goes with a parent that goes meanwhile.
    QWidget* parent = QApplication::activeModalWidget();
    if (!parent)
        parent = QApplication::activeWindow();
    if (!parent)
        parent = m_parent;
    const QPointer<QMessageBox> box = new QMessageBox(parent);
    box->setWindowTitle(caption());
    box->setText(text);
    switch (buttons) {
    case Buttons::Ok:
        box->setIcon(QMessageBox::Information);
        box->setStandardButtons(QMessageBox::Ok);
        box->setEscapeButton(QMessageBox::Ok);
        break;
    case Buttons::YesNo:
        box->setIcon(QMessageBox::Question);
        box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box->setEscapeButton(QMessageBox::No);
        break;
    case Buttons::YesNoCancel:
        box->setIcon(QMessageBox::Question);
        box->setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        box->setEscapeButton(QMessageBox::Cancel);
        break;
    case Buttons::OkCancel:
        box->setIcon(QMessageBox::Information);
        box->setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        box->setEscapeButton(QMessageBox::Cancel);
        break;
    case Buttons::SaveDiscardCancel:
        box->setIcon(QMessageBox::Question);
        box->setStandardButtons(QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
        box->setDefaultButton(QMessageBox::Save);
        box->setEscapeButton(QMessageBox::Cancel);
        break;
    }
    if (defaultAnswer)
        if (QAbstractButton* button = box->button(buttonOf(*defaultAnswer, buttons)))
            box->setDefaultButton(static_cast<QPushButton*>(button));
    const int chosen = box->exec();
    delete box;
    switch (chosen) {
    case QMessageBox::Yes:
    case QMessageBox::Save:
        return Answer::Yes;
    case QMessageBox::No:
    case QMessageBox::Discard:
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
