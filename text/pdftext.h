#pragma once

#include <QList>
#include <QString>

#include "store/textindex.h"

namespace qmr {

// The words of a PDF file from its own text layer: a PDF kept as a shortcut is read this way
// rather than recognised, which is exact and quick.
class PdfText
{
public:
    // The file says it is a PDF in its first kilobyte, whatever its name.
    static bool isPdf(const QString& path);
    // Every page's words in reading order, page after page. A box is in points (1/72 inch),
    // the pages stacked top to bottom as one tall picture, and is close rather than exact. Nothing
    // for a file that needs a password, cannot be read as a PDF, or has no pages or no text layer.
    static QList<TextIndex::Word> words(const QString& path);

    // The boxes of the lines past this many in one file are left empty: each line's box costs
    // the library a reading of its page, some milliseconds, and the words are what counts.
    static constexpr int kSelectedLines = 1000;
};

} // namespace qmr
