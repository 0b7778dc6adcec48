#pragma once

#include <QString>

#include "core/commandtable.h"
#include "core/level.h"
#include "store/commandcontext.h"

namespace qmr {

// The menu entries of cabinet exchange: export and import of a cabinet from the Tools menu
// and from a cabinet's pop-up, and the import of a directory's files into a folder or a
// document.
class ExchangeCommands
{
public:
    explicit ExchangeCommands(const CommandContext& context);
    // The context is held by reference: a temporary one would be gone before its use.
    ExchangeCommands(CommandContext&& context) = delete;

    void addTo(CommandTable& table);

    // The dialogs, with the cabinet chosen in them (-1: the first one).
    void exportCabinet(qint32 cabinetId = -1);
    void importCabinet(qint32 cabinetId = -1);
    // The cabinet of a cabinet pop-up: the one the tree's click made current, else the
    // container list's selected cabinet when the list spoke last; -1 when neither.
    qint32 popupCabinet() const;
    // Brings the files of a chosen directory into the target folder (a document each) or
    // document (a page each).
    void importFiles(Level level);

private:
    const CommandContext& m_context;
    // The directory of the last loose-file import, where the chooser opens next.
    QString m_importFilesPath;
};

} // namespace qmr
