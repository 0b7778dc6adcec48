#pragma once

#include <QString>
#include <QStringList>

namespace qmr {

class AppHome;

// Finds the help text that Help Topics shows. The places, in order: beside the executable (a
// build tree, or a copy run from its own directory), the installed data directory (found
// from the executable, so an installation in any prefix works, then the system's data
// directories), and last the application home, where the first start writes the text the
// program carries when the home has none.
class HelpLocator
{
public:
    HelpLocator(const QString& executableDir, const QStringList& dataDirs, const QString& homeDir);
    // The places of this run, from the running executable and the system's data directories.
    static HelpLocator forRun(const AppHome& home);

    static QString fileName();
    // Every file looked at, in order.
    QStringList candidates() const;
    // The first that exists, "" when none does.
    QString locate() const;

    // The help text the program carries.
    static QByteArray shippedText();
    // Writes the carried text into the home when it has no help file; false when that failed.
    static bool ensureInHome(const AppHome& home);

private:
    QStringList m_dirs;
};

} // namespace qmr
