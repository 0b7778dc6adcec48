#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>

#include "dialogs/itemdialog.h"
#include "tests/support/commandharness.h"
#include "tests/support/fixturestore.h"

namespace qmr::test {

// A filled store with a session, a scripted prompter and choosers, and a navigator that
// records what it is told.
//   Cabinets: 1 "Home Papers", 2 "Private" (password "secret"), 3 "Empty Drawers".
//   Drawers: 1 "Bank" and 2 "Taxes" in 1; 3 "Health" in 2; 4, 5 in 3.
//   Folders: 1 "Checking", 2 "Savings" in 1; 3 "2025" in 2; 4 "Doctor" in 3.
//   Documents: 1 "March statement" (1234.5), 2 "O'Brien's letter", 3 "Return".
//   Pages: 1, 2 in document 1; 3 in document 3.
struct DialogHarness : CommandHarness<>
{
    DialogHarness()
    {
        FixtureStore store(home.home());
        store.fillSample();
        const qint32 empty = store.cabinet("Empty Drawers");
        store.drawer(empty, "One");
        store.drawer(empty, "Two");
        openSession();
    }
};

template <class T> T* child(QWidget* w, const char* name)
{
    T* found = w->findChild<T*>(QLatin1String(name));
    if (!found)
        qWarning("no control %s", name);
    return found;
}

inline QLineEdit* edit(QWidget* w, const char* name)
{
    return child<QLineEdit>(w, name);
}

// Fills line edits from "control=text" entries.
inline void type(QWidget* w, const QStringList& typed)
{
    for (const QString& t : typed)
        edit(w, qPrintable(t.section('=', 0, 0)))->setText(t.section('=', 1));
}

inline QString labelText(QWidget* w, const char* name)
{
    QLabel* l = child<QLabel>(w, name);
    return l ? l->text() : QStringLiteral("<missing>");
}

} // namespace qmr::test
