#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <functional>

#include "core/pageopener.h"
#include "store/commandcontext.h"

namespace qmr {

class PageViewWindow;
struct PageRow;

// Opens a page from the page pane: the viewer in mode "Edit" for a page image (one viewer,
// which moves to the next page opened), the desktop's program for a shortcut page's file.
class ViewerPageOpener : public PageOpener
{
    Q_DECLARE_TR_FUNCTIONS(qmr::ViewerPageOpener)
public:
    explicit ViewerPageOpener(const CommandContext& context) : m_context(context) {}
    // The context is held by reference: a temporary one would be gone before its use.
    ViewerPageOpener(CommandContext&& context) = delete;

    void openPage(qint32 pageId) override;
    void openFoundPage(qint32 pageId, const PageWords& words) override;
    // What the viewers' Print button does, from the next viewer opened on.
    void setPrintHandler(std::function<void(qint32 pageId)> handler)
    {
        m_printHandler = std::move(handler);
    }
    // The viewer opened last, while it is open.
    PageViewWindow* viewer() const;

    // A shortcut page: "This shortcut has no filename." for an empty name, "Missing file '…'."
    // for a file that is gone, else the file with its program (a failure to start names it).
    static void openShortcut(const CommandContext& context, const PageRow& page);

private:
    void open(qint32 pageId, const PageWords& words);

    const CommandContext& m_context;
    QPointer<PageViewWindow> m_viewer;
    std::function<void(qint32)> m_printHandler;
};

} // namespace qmr
