#pragma once

#include <QtGlobal>

namespace qmr {

// Told whenever a page reaches a document (a new page row, a move, a paste, a drop, a scan),
// so that a folder with an address gets its notice. The mail feature plugs in; without it
// nothing is sent.
class PageNotifier
{
public:
    virtual ~PageNotifier() = default;
    virtual void pageAdded(qint32 pageId) = 0;
    // A page's picture was written (a scan saved, an edit saved): what is made from the picture
    // follows. No notice goes for it.
    virtual void pictureSaved(qint32 pageId) { Q_UNUSED(pageId) }
    // Many pages came in at once with their pictures (a cabinet brought in): what is made from
    // the pictures looks over the pages. No notice goes for them.
    virtual void picturesArrived() {}
};

} // namespace qmr
