#pragma once

#include <QHash>
#include <QString>
#include <functional>

class QAction;
class QMenu;
class QMenuBar;

namespace qmr {

// The main window's menu bar, built from one table. An entry with no command behind it yet
// stands disabled rather than doing nothing.
class NavMenus
{
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

private:
    QHash<QString, QMenu*> m_menus;
    QHash<QString, QAction*> m_actions;
};

} // namespace qmr
