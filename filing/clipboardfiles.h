#pragma once

#include <QStringList>

class QMimeData;

namespace qmr {

// Lists of files as the desktop passes them, on the clipboard and in drops: `text/uri-list`,
// and for copies also `x-special/gnome-copied-files`, which file managers paste.
class ClipboardFiles
{
public:
    // The local files that the data names, in order: its URI list, else the file managers'
    // copied-files list. Addresses that are not local files are left out.
    static QStringList filesOf(const QMimeData* data);
    // The data of a copy of these files; empty names are left out.
    static QMimeData* mimeDataFor(const QStringList& files);

    // The system clipboard: its files, whether it has any, and a copy put on it. A
    // clipboard that cannot be read reads as empty.
    static QStringList getClipboardFiles();
    static bool clipboardHasFiles();
    static bool setClipboardFiles(const QStringList& files);
};

} // namespace qmr
