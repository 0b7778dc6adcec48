#pragma once

#include <QString>
#include <optional>

namespace qmr {

// Windows that hand a value back to the program: password, directory, file names.
class Choosers
{
public:
    virtual ~Choosers() = default;
    // The typed text, or nothing when the user cancelled (closing the window counts as Cancel).
    virtual std::optional<QString> askPassword() = 0;
    // A directory, or nothing when cancelled; `start` is where the chooser opens.
    virtual std::optional<QString> chooseDirectory(const QString& start) = 0;
    // Opens a text file in the user's editor without waiting; on failure returns the reason.
    virtual std::optional<QString> openInEditor(const QString& path) = 0;
};

} // namespace qmr
