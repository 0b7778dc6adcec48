#include "exchange/importreport.h"

namespace qmr {

namespace {

// The skipped entries a message names; a message is no place for a long list.
constexpr int kNamedSkips = 15;

} // namespace

QString ImportReport::skippedText() const
{
    QStringList lines = skipped.mid(0, kNamedSkips);
    if (skipped.size() > kNamedSkips)
        lines << QStringLiteral("... and %1 more.").arg(skipped.size() - kNamedSkips);
    return lines.join(QStringLiteral("\r\n"));
}

QString ImportReport::reportText() const
{
    QString text = QStringLiteral("%1 files imported.\r\n%2 shortcuts created.")
                       .arg(filesImported)
                       .arg(shortcutsCreated);
    if (stopped)
        text += QStringLiteral("\r\nImport stopped by user.");
    return text;
}

} // namespace qmr
