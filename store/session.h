#pragma once

#include "core/apphome.h"
#include "core/findrecord.h"
#include "core/selectionrecord.h"
#include "core/settings.h"
#include "store/cabinetlock.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "store/pagepaths.h"

namespace qmr {

// The program-wide state of one run: the store connection, the open-cabinet list, the
// selection record, the find criteria and the values read from the settings at start.
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
    PagePaths& paths() { return m_paths; }
    SelectionRecord& selection() { return m_selection; }
    FindRecord& findRecord() { return m_find; }

    // Reads ZoomDefault, DisplayCount, ThumbView (ThumbSide is read and overruled: 100).
    void readStartSettings();
    QString zoomDefault() const { return m_zoomDefault; }
    int displayCount() const { return m_displayCount; }
    int thumbSide() const { return m_thumbSide; }
    QString thumbView() const { return m_thumbView; }

private:
    AppHome m_home;
    Settings& m_settings;
    Database m_db;
    CabinetLock m_locks{m_db};
    ItemStore m_items{m_db};
    PagePaths m_paths;
    SelectionRecord m_selection;
    FindRecord m_find;
    QString m_zoomDefault = QStringLiteral("NONE");
    int m_displayCount = 20;
    int m_thumbSide = 100;
    QString m_thumbView = QStringLiteral("thumbnail");
};

} // namespace qmr
