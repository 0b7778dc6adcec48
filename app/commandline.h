#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include "core/apphome.h"

namespace qmr {

// What the command line asks for.
struct CommandLineRequest
{
    enum class Action { Window, Help, Version, Export, Import, Check, Find, ReadText, Error };
    Action action = Action::Window;
    QString home;        // --home, "" when not given
    QString cabinet;     // --export, --import: the cabinet's name
    QString directory;   // --export: the output path; --import: the exchange directory
    QString message;     // Help: the help text; Version: the version line; Error: what is wrong
    bool repair = false; // --check --repair
    QString words;       // --find: the words to look for on the pages
};

// The command line, read with QCommandLineParser: --help, --version, --home DIR, and the
// window-less commands --export "CABINET" DIR, --import DIR "CABINET", --check [--repair], --find
// "WORDS" and --read-text. The toolkit's own options (-platform, -style ...) pass through to the
// window.
class CommandLine
{
    Q_DECLARE_TR_FUNCTIONS(qmr::CommandLine)

public:
    static constexpr int kUsageError = 2;

    static CommandLineRequest parse(const QStringList& arguments);
    // The home a request names: --home, else $QUILLMERE_HOME, else $XDG_DATA_HOME/Quillmere.
    static AppHome homeOf(const CommandLineRequest& request);
    // Runs --export, --import, --check, --find or --read-text without a window; needs a
    // QCoreApplication.
    // Returns the exit status.
    static int runBatch(const CommandLineRequest& request);
    // Prints help, the version or a usage error; returns the exit status.
    static int print(const CommandLineRequest& request);
};

} // namespace qmr
