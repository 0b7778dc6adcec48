#pragma once

#include <QString>
#include <QStringList>

#include "core/attempt.h"

namespace qmr {

// The directory that holds everything the program owns (store, page files, text files).
class AppHome
{
public:
    AppHome() = default;
    explicit AppHome(const QString& dir);

    // --home DIR on the command line, else $QUILLMERE_HOME, else $XDG_DATA_HOME/Quillmere.
    static AppHome fromArguments(const QStringList& arguments);

    const QString& path() const { return m_path; }
    // A file or directory below the home; `relative` has no leading '/'.
    QString file(const QString& relative) const;
    // Makes the directory with its parents; when it cannot be, the system's reason (and the
    // part of the path it concerns, where that is not the home itself).
    Attempt<> ensureExists() const;

private:
    QString m_path;
};

} // namespace qmr
