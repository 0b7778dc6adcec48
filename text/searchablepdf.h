#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

#include "core/attempt.h"
#include "store/textindex.h"

namespace qmr {

class Progress;

// A PDF of a document's pictures, each page as large as the paper that was scanned, with the
// words read on it laid over the picture where they stand and invisible, so that any reader
// finds and selects them while only the picture shows.
class SearchablePdf
{
    Q_DECLARE_TR_FUNCTIONS(SearchablePdf)
public:
    struct Page
    {
        QString path;                 // the picture's file
        qint32 pageNumber = 0;        // how a message names the page
        QList<TextIndex::Word> words; // boxes in the picture's pixels; none when not read
    };
    enum class Outcome { Written, Cancelled };

    // What a picture that states no resolution was most likely scanned at.
    static constexpr int kDefaultDpi = 300;

    // Writes the pages in the order given, one step of `progress` each, and stops when it is
    // stopped. The file at `path` is replaced only once the whole PDF is written: a failure or
    // a cancel leaves what stood there.
    static Attempt<Outcome> write(const QList<Page>& pages, const QString& path,
                                  const QString& title, Progress& progress);
};

} // namespace qmr
