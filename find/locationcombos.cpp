#include "find/locationcombos.h"

#include <QComboBox>
#include <QCoreApplication>

#include "core/nameorder.h"
#include "store/session.h"

namespace qmr {

const QString LocationCombos::kAll = QStringLiteral("(All)");

namespace {

// The first item of the level below `parentId` whose name is the text (compared as the store
// compares names); 0 for "(All)", an empty text or no such item.
qint32 idFromName(const ItemStore& items, Level level, qint32 parentId, const QString& text)
{
    if (text.isEmpty() || text == LocationCombos::kAll)
        return 0;
    qint32 found = 0;
    for (const ItemRow& row : items.children(level, parentId))
        if (compareNames(row.name, text) == 0 && (found == 0 || row.id < found))
            found = row.id;
    return found;
}

} // namespace

LocationCombos::LocationCombos(Session& session, QComboBox& cabinet, QComboBox& drawer,
                               QComboBox& folder)
    : m_session(session), m_cabinet(cabinet), m_drawer(drawer), m_folder(folder)
{
}

void LocationCombos::setAllOnly(QComboBox& combo)
{
    combo.clear();
    combo.addItem(kAll);
    combo.setEnabled(false);
    combo.setCurrentIndex(0);
}

void LocationCombos::reset()
{
    fillCabinetCombo();
    // Below "(All)" cabinets there is nothing to choose.
    setAllOnly(m_drawer);
    setAllOnly(m_folder);
    m_cabinetId = m_drawerId = m_folderId = 0;
    m_lastCabinet = m_lastDrawer = m_lastFolder = kAll;
}

void LocationCombos::fillCabinetCombo()
{
    m_cabinet.clear();
    const QVector<ItemRow> cabinets = m_session.items().children(Level::Cabinet, -1);
    m_hasCabinets = !cabinets.isEmpty();
    if (m_hasCabinets) {
        m_cabinet.addItem(kAll);
        // A locked cabinet is not offered: searching it would show what its password hides.
        for (const ItemRow& cabinet : cabinets)
            if (m_session.locks().isCabinetOpen(cabinet.id))
                m_cabinet.addItem(cabinet.name);
        m_cabinet.setEnabled(true);
    } else {
        m_cabinet.addItem(
            QCoreApplication::translate("qmr::LocationCombos", "No file cabinets to find"));
        m_cabinet.setEnabled(false);
    }
    m_cabinet.setCurrentIndex(0);
}

void LocationCombos::fillDrawerCombo()
{
    m_drawer.clear();
    m_drawer.addItem(kAll);
    const QVector<ItemRow> drawers = m_session.items().children(Level::Drawer, m_cabinetId);
    for (const ItemRow& drawer : drawers)
        m_drawer.addItem(drawer.name);
    m_drawer.setEnabled(!drawers.isEmpty());
    m_drawer.setCurrentIndex(0);
}

void LocationCombos::fillFolderCombo()
{
    m_folder.clear();
    m_folder.addItem(kAll);
    const QVector<ItemRow> folders = m_session.items().children(Level::Folder, m_drawerId);
    for (const ItemRow& folder : folders)
        m_folder.addItem(folder.name);
    m_folder.setEnabled(!folders.isEmpty());
    m_folder.setCurrentIndex(0);
}

bool LocationCombos::selectText(QComboBox& combo, const QString& text)
{
    const int index = combo.findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index < 0)
        return false;
    combo.setCurrentIndex(index);
    return true;
}

void LocationCombos::syncLocationCombos()
{
    const QString cabinet = m_cabinet.currentText();
    if (cabinet != m_lastCabinet) {
        m_cabinetId = cabinetIdFromName(cabinet);
        if (cabinet == kAll) {
            setAllOnly(m_drawer);
            setAllOnly(m_folder);
        } else {
            m_drawer.setEnabled(true);
            fillDrawerCombo();
            setAllOnly(m_folder);
        }
        m_lastCabinet = cabinet;
        return;
    }
    const QString drawer = m_drawer.currentText();
    if (drawer != m_lastDrawer) {
        m_drawerId = drawerIdFromName(drawer);
        if (drawer == kAll) {
            setAllOnly(m_folder);
        } else {
            m_folder.setEnabled(true);
            fillFolderCombo();
        }
        m_lastDrawer = drawer;
        return;
    }
    const QString folder = m_folder.currentText();
    if (folder != m_lastFolder) {
        m_folderId = folderIdFromName(folder);
        m_lastFolder = folder;
    }
}

QString LocationCombos::idsText() const
{
    return QStringLiteral("%1:%2:%3").arg(m_cabinetId).arg(m_drawerId).arg(m_folderId);
}

qint32 LocationCombos::cabinetIdFromName(const QString& text) const
{
    return idFromName(m_session.items(), Level::Cabinet, -1, text);
}

qint32 LocationCombos::drawerIdFromName(const QString& text) const
{
    return idFromName(m_session.items(), Level::Drawer, m_cabinetId, text);
}

qint32 LocationCombos::folderIdFromName(const QString& text) const
{
    return idFromName(m_session.items(), Level::Folder, m_drawerId, text);
}

} // namespace qmr
