#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace qmr {

// What a save-file chooser offers: `start` is the proposed path, `filters` the filter list
// ("JPEG files (*.jpg)"...), the one at `filterIndex` chosen at first; a name typed without an
// extension gets `defaultSuffix`. With `confirmOverwrite` off the caller asks about an existing
// file itself.
struct SaveFileRequest
{
    QString caption;
    QString start;
    QStringList filters;
    int filterIndex = 0;
    QString defaultSuffix;
    bool confirmOverwrite = true;
};

// Windows that hand a value back to the program (password, directory), and the desktop's
// programs that open a file.
class Choosers
{
public:
    virtual ~Choosers() = default;
    // The typed text, or nothing when the user cancelled (closing the window counts as Cancel).
    virtual std::optional<QString> askPassword() = 0;
    // A directory, or nothing when cancelled; `start` is where the chooser opens.
    virtual std::optional<QString> chooseDirectory(const QString& start) = 0;
    // A file to open, or nothing when cancelled. `start` is the file the dialog proposes (its
    // directory is where it opens), `filters` its lines of file types ("Text (*.txt)"), of
    // which `selectedFilter` is shown first.
    virtual std::optional<QString>
    chooseFileToOpen(const QString& start, const QStringList& filters, int selectedFilter) = 0;
    // Opens a file with the desktop's program for its type, without waiting; on failure
    // returns the reason, naming the file.
    virtual std::optional<QString> openFile(const QString& path) = 0;
    // A file name to write, or nothing when cancelled (see SaveFileRequest).
    virtual std::optional<QString> saveFile(const SaveFileRequest& request) = 0;
};

} // namespace qmr
