#pragma once

#include <QString>
#include <optional>

namespace qmr {

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
};

} // namespace qmr
