#pragma once

#include <QtGlobal>

namespace qmr {

// Opens one page for a person to look at: the viewer for a page image, the file's own program
// for a shortcut page. The window plugs in what is available.
class PageOpener
{
public:
    virtual ~PageOpener() = default;
    virtual void openPage(qint32 pageId) = 0;
};

} // namespace qmr
