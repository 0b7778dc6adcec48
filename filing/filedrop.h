#pragma once

#include <QStringList>
#include <functional>

#include "core/nodekey.h"

namespace qmr {

class ItemMover;
class PageFileAdder;
struct CommandContext;

// A batch of outside files becoming pages: the files dropped on a node, an item or the page
// pane, and the files pasted from the clipboard. It runs under the progress "Pasting files"
// with Cancel, which keeps what was added; the pages show as they come, and the files that
// could not be added are named in one message at the end.
class FileDrop
{
public:
    // `context` is the navigator's, which outlives this.
    FileDrop(const CommandContext& context, PageFileAdder& files);

    // Each file through the mover's drop of an outside file: a drop on a folder makes one
    // document "New document" for all of them. Refused (nothing happens) on any other target
    // than a document or a folder.
    void dropFiles(const QStringList& files, NodeKey target, ItemMover& mover);
    // Each file into the document; its pages are shown afterwards.
    void pasteFiles(const QStringList& files, qint32 documentId);

    // How often the pages on show are brought up to date while a drop runs.
    static constexpr int kShowEveryMs = 400;
    // The most files whose rows share one commit, and the longest such a group stays open.
    // The first group is small, so that the copies start at once; each next one may hold
    // twice as many, up to the most, while the copies of the last one run.
    static constexpr int kFirstGroupRows = 4;
    static constexpr int kGroupRows = 32;
    static constexpr int kGroupMs = 100;

private:
    void runBatch(const QStringList& files, const std::function<void(const QString&)>& addOne,
                  const std::function<void()>& showPages, bool showAsTheyCome,
                  const std::function<bool()>& canGroup);

    const CommandContext& m_context;
    PageFileAdder& m_files;
};

} // namespace qmr
