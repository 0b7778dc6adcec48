#pragma once

#include "core/apphome.h"
#include "core/clippages.h"
#include "core/findrecord.h"
#include "core/foundset.h"
#include "core/selectionrecord.h"
#include "core/settings.h"
#include "store/cabinetlock.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"

namespace qmr {

// The program-wide state of one run: the store connection, the open-cabinet list, the
// selection record and the find criteria. One object, passed to whoever needs it.
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
    SelectionRecord& selection() { return m_selection; }
    FindRecord& findRecord() { return m_find; }
    // What the last search asked of the pages, for its found documents.
    FoundSet& foundSet() { return m_foundSet; }
    // The pages cut and waiting for a paste.
    ClipPages& clipPages() { return m_clipPages; }

private:
    AppHome m_home;
    Settings& m_settings;
    Database m_db;
    CabinetLock m_locks{m_db};
    ItemStore m_items{m_db};
    PageStore m_pages{m_db};
    PagePaths m_paths;
    SelectionRecord m_selection;
    FindRecord m_find;
    FoundSet m_foundSet;
    ClipPages m_clipPages;
};

} // namespace qmr
