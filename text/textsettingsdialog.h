#pragma once

#include <QDialog>
#include <QStringList>

class QLabel;
class QListWidget;
class QPushButton;

namespace qmr {

// frmTextSettings: the languages the pages are written in, among the language packs
// installed. A language the setting names whose pack is missing is said here, once, with
// what to do about it.
class TextSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    // `chosen`: the languages read with now ("eng+deu"); `installed`: the packs there are.
    TextSettingsDialog(const QString& chosen, const QStringList& installed,
                       QWidget* parent = nullptr);

    // The languages checked, "+" between them: those chosen before in their order (the first
    // leads the recogniser), then the others in the list's order.
    QString languages() const;
    // A language's name for people: "German (deu)"; the pack's name alone when unknown.
    static QString displayName(const QString& pack);

private:
    void updateButtons();

    QStringList m_before;
    QListWidget* m_list;
    QLabel* m_missing;
    QPushButton* m_ok;
};

} // namespace qmr
