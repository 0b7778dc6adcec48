#include "viewer/pageimage.h"

namespace qmr {

void PageImage::setImage(const QImage& image)
{
    forgetEdits();
    m_image = image;
}

void PageImage::forgetEdits()
{
    m_edits.clear();
    m_undone.clear();
}

void PageImage::clear()
{
    setImage(QImage());
}

bool PageImage::apply(ImageEdit edit)
{
    if (!edit.apply(m_image))
        return false;
    m_edits.push_back(std::move(edit));
    m_undone.clear();
    return true;
}

bool PageImage::undo()
{
    if (m_edits.empty())
        return false;
    m_edits.back().undo(m_image);
    m_undone.push_back(std::move(m_edits.back()));
    m_edits.pop_back();
    return true;
}

bool PageImage::redo()
{
    if (m_undone.empty())
        return false;
    ImageEdit edit = std::move(m_undone.back());
    m_undone.pop_back();
    if (!edit.apply(m_image))
        return false;
    m_edits.push_back(std::move(edit));
    return true;
}

qint64 PageImage::memoryBytes() const
{
    qint64 bytes = m_image.sizeInBytes();
    for (const ImageEdit& edit : m_edits)
        bytes += edit.undoBytes();
    for (const ImageEdit& edit : m_undone)
        bytes += edit.undoBytes();
    return bytes;
}

} // namespace qmr
