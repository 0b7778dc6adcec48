#pragma once

#include <QStringList>

#include "core/apphome.h"
#include "core/navigatorcallbacks.h"

namespace qmr {

class ItemStore;
class NavigatorCallbacks;

// Named outlines of folders and documents in Drawer.txt, applied to a new drawer.
class DrawerTemplates
{
public:
    explicit DrawerTemplates(AppHome home) : m_home(std::move(home)) {}

    QString filePath() const { return m_home.file(QStringLiteral("Drawer.txt")); }
    // Reads the names: lines that begin exactly "DRW=", the name from the fifth character.
    void loadDrawerTemplates();
    const QStringList& names() const { return m_names; }
    int count() const { return int(m_names.size()); }

    // Creates the folders and documents of the first template of that name (without regard
    // to case) in the drawer. The caller shows them once its transaction holds.
    QVector<CreatedItem> applyDrawerTemplate(const QString& name, qint32 drawerId,
                                             ItemStore& items) const;

private:
    AppHome m_home;
    QStringList m_names;
};

} // namespace qmr
