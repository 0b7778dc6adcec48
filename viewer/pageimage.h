#pragma once

#include <QImage>
#include <vector>

#include "viewer/imageedit.h"

namespace qmr {

// The image of the page in the viewer, with the edits made since it was loaded or saved, so
// that each can be taken back, the last first, and those taken back made again.
class PageImage
{
public:
    const QImage& image() const { return m_image; }
    bool isNull() const { return m_image.isNull(); }
    // A new image (a load): the edits of the old one are forgotten.
    void setImage(const QImage& image);
    void clear();

    // Applies the edit and keeps it for undo; false when it changed nothing. A new edit
    // forgets what was taken back.
    bool apply(ImageEdit edit);
    bool canUndo() const { return !m_edits.empty(); }
    bool undo();
    bool canRedo() const { return !m_undone.empty(); }
    bool redo();
    // The image differs from the one loaded or saved last.
    bool edited() const { return !m_edits.empty(); }
    // After a save the edits are the page's: there is nothing left to take back.
    void forgetEdits();

    // The bytes of the image and of what the undo keeps.
    qint64 memoryBytes() const;

private:
    QImage m_image;
    std::vector<ImageEdit> m_edits;
    std::vector<ImageEdit> m_undone; // the last taken back last
};

} // namespace qmr
