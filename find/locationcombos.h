#pragma once

#include <QString>
#include <QtGlobal>

class QComboBox;

namespace qmr {

class Session;

// The three location combos of the find dialog (cabinet, drawer, folder) and the ids they
// stand for. The combos tell nobody when they change: a poll, run by the dialog's timer,
// notices a changed text and deals with one level per poll, so a new cabinet reaches the
// drawer's id only at a later poll.
class LocationCombos
{
public:
    static const QString kAll; // "(All)"

    LocationCombos(Session& session, QComboBox& cabinet, QComboBox& drawer, QComboBox& folder);

    // The state of a fresh dialog: cabinets offered, drawer and folder "(All)" alone, every
    // id 0 and every remembered text "(All)".
    void reset();
    // One poll.
    void syncLocationCombos();

    void fillCabinetCombo();
    void fillDrawerCombo();
    void fillFolderCombo();
    // Selects the line with this text; false (and nothing changes) when there is none.
    static bool selectText(QComboBox& combo, const QString& text);

    // 0 stands for "(All)".
    qint32 cabinetId() const { return m_cabinetId; }
    qint32 drawerId() const { return m_drawerId; }
    qint32 folderId() const { return m_folderId; }
    // Whether the store has any cabinet to search at all.
    bool hasCabinets() const { return m_hasCabinets; }
    // "cabinet:drawer:folder", the ids as the last poll left them.
    QString idsText() const;

    qint32 cabinetIdFromName(const QString& text) const;
    qint32 drawerIdFromName(const QString& text) const;
    qint32 folderIdFromName(const QString& text) const;

private:
    static void setAllOnly(QComboBox& combo);

    Session& m_session;
    QComboBox& m_cabinet;
    QComboBox& m_drawer;
    QComboBox& m_folder;
    qint32 m_cabinetId = 0;
    qint32 m_drawerId = 0;
    qint32 m_folderId = 0;
    QString m_lastCabinet;
    QString m_lastDrawer;
    QString m_lastFolder;
    bool m_hasCabinets = false;
};

} // namespace qmr
