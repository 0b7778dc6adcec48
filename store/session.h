#pragma once

#include "core/apphome.h"
#include "core/settings.h"
#include "store/cabinetlock.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"

namespace qmr {

// The store of one run: its home, the connection, the items and pages, the cabinet locks
// and the page paths. One object, passed to whoever needs it; what the run only remembers
// (selection, search, cut pages) is its RunState.
class Session
{
public:
    Session(AppHome home, Settings& settings);
    ~Session();

    const AppHome& home() const { return m_home; }
    Settings& settings() { return m_settings; }
    Database& db() { return m_db; }
    CabinetLock& locks() { return m_locks; }
    ItemStore& items() { return m_items; }
    PageStore& pages() { return m_pages; }
    const PagePaths& paths() const { return m_paths; }

private:
    AppHome m_home;
    Settings& m_settings;
    Database m_db;
    CabinetLock m_locks{m_db};
    ItemStore m_items{m_db};
    PageStore m_pages{m_db};
    PagePaths m_paths;
};

} // namespace qmr
