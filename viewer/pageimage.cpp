#include "viewer/pageimage.h"

namespace qmr {

void PageImage::setImage(const QImage& image)
{
    m_edits.clear();
    m_image = image;
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
    return true;
}

bool PageImage::undo()
{
    if (m_edits.empty())
        return false;
    m_edits.back().undo(m_image);
    m_edits.pop_back();
    return true;
}

qint64 PageImage::memoryBytes() const
{
    qint64 bytes = m_image.sizeInBytes();
    for (const ImageEdit& edit : m_edits)
        bytes += edit.undoBytes();
    return bytes;
}

} // namespace qmr
