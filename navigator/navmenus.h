#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QKeySequence>
#include <QSet>
#include <QString>
#include <functional>

class QAction;
class QMenu;
class QMenuBar;

namespace qmr {

// The main window's menu bar, built from one table. An entry with no command behind it yet
// stands disabled rather than doing nothing. Entries carry the desktop theme's icon where a
// standard one exists, and show their keys: the window-wide ones (Ctrl+F, F1, Ctrl+Q) work
// from anywhere; the keys of the tree and the lists (Insert, Delete, F2) are handled by each
// control and only shown here.
class NavMenus
{
    Q_DECLARE_TR_FUNCTIONS(qmr::NavMenus)

public:
    using Commands = QHash<QString, std::function<void()>>;

    void build(QMenuBar* bar, const Commands& commands);
    QMenu* menu(const QString& name) const { return m_menus.value(name); }
    QAction* action(const QString& name) const { return m_actions.value(name); }
    // The six level menus of the bar; at most one is visible at a time.
    static const QStringList& levelMenus();
    void showOnly(const QString& menuName); // "" hides all six
    // Runs an entry as if it had been chosen; nothing when it is disabled or unknown.
    void run(const QString& name) const;
    // Whether a command stands behind the entry.
    bool hasCommand(const QString& name) const { return m_commands.contains(name); }
    // Enables an entry when `available` and it has a command; an entry still to come stays
    // disabled.
    void setAvailable(const QString& name, bool available);
    // Shows `keys` beside the entry as the key that a control runs it with.
    void setKeyHint(const QString& name, const QKeySequence& keys);

private:
    QMenuBar* m_bar = nullptr;
    QHash<QString, QMenu*> m_menus;
    QHash<QString, QAction*> m_actions;
    QSet<QString> m_commands;
};

} // namespace qmr
