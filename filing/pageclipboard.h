#pragma once

#include "filing/filedrop.h"
#include "filing/pagefileadder.h"

namespace qmr {

struct CommandContext;

// Cut, Copy and Paste of pages. Cut marks the selected pages, which move at the next paste;
// Copy puts their files on the system clipboard as a file list, for this program or a file
// manager to paste. Paste puts into the document selected in the tree the cut pages when
// there are any, else the files of the clipboard.
class PageClipboard
{
public:
    // `context` is the navigator's, which outlives this.
    explicit PageClipboard(const CommandContext& context);

    // mnuPopupPageCut: the selected pages of the page list, in its order.
    void cut();
    // mnuPopupPageCopy: also forgets a cut.
    void copySelectedPages();
    // mnuPopupPagePaste and mnuPopupDocumentPaste.
    void pasteIntoDocument();
    // Whether a paste has something to put: pages cut, or files on the clipboard.
    bool canPaste() const;

    PageFileAdder& files() { return m_files; }

private:
    void pasteCutPages(qint32 documentId);

    const CommandContext& m_context;
    PageFileAdder m_files;
    FileDrop m_drop;
};

} // namespace qmr
