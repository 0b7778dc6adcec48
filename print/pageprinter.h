#pragma once

#include <QCoreApplication>
#include <QString>
#include <QVector>

#include "print/printscale.h"
#include "store/pagestore.h"

namespace qmr {

class PagePaths;
class PrintTarget;
class Progress;

// How a print run ended.
struct PrintOutcome
{
    int printed = 0;
    bool cancelled = false;
    QString error; // "" when nothing failed
};

// The one printing routine, for a single page and for a document's range alike: each page's
// picture is read from its file and drawn on a sheet of its own at its true size, the sheet
// turned across for a page wider than it is tall.
class PagePrinter
{
    Q_DECLARE_TR_FUNCTIONS(qmr::PagePrinter)

public:
    PagePrinter(const PagePaths& paths, const PrintScaleSettings& scale);

    // Prints `pages` in their order. With a progress (a range), every page is a step, Cancel
    // ends the run after the page in hand, and the windows get their events after each page.
    // A picture that cannot be read ends the run with the reader's reason; the sheets
    // before it stay printed.
    PrintOutcome print(const QVector<PageRow>& pages, PrintTarget& target,
                       Progress* progress = nullptr, const QString& title = QString()) const;

private:
    const PagePaths& m_paths;
    PrintScaleSettings m_scale;
};

} // namespace qmr
