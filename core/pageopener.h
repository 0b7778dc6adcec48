#pragma once

#include <QtGlobal>

#include "core/pagewords.h"

namespace qmr {

// Opens one page for a person to look at: the viewer for a page image, the file's own program
// for a shortcut page. The window plugs in what is available.
class PageOpener
{
public:
    virtual ~PageOpener() = default;
    virtual void openPage(qint32 pageId) = 0;
    // A page of a document found by the words on its pages: an opener that can show where
    // they are does.
    virtual void openFoundPage(qint32 pageId, const PageWords& words)
    {
        Q_UNUSED(words)
        openPage(pageId);
    }
};

} // namespace qmr
