#pragma once

#include <QImage>
#include <vector>

#include "viewer/imageedit.h"

namespace qmr {

// The image of the page in the viewer, with the edits made since it was loaded or saved, so
// that each can be taken back, the last first.
class PageImage
{
public:
    const QImage& image() const { return m_image; }
    bool isNull() const { return m_image.isNull(); }
    // A new image (a load): the edits of the old one are forgotten.
    void setImage(const QImage& image);
    void clear();

    // Applies the edit and keeps it for undo; false when it changed nothing.
    bool apply(ImageEdit edit);
    bool canUndo() const { return !m_edits.empty(); }
    bool undo();
    // After a save the edits are the page's: there is nothing left to take back.
    void forgetEdits() { m_edits.clear(); }

    // The bytes of the image and of what the undo keeps.
    qint64 memoryBytes() const;

private:
    QImage m_image;
    std::vector<ImageEdit> m_edits;
};

} // namespace qmr
