#pragma once

#include <QPageLayout>
#include <QSize>
#include <QString>

class QImage;

namespace qmr {

// Where printed pages go: a sheet a page, turned to suit its picture, each picture drawn at
// its top left corner at a size in the target's own dots.
class PrintTarget
{
public:
    virtual ~PrintTarget() = default;
    virtual int dpiX() const = 0;
    virtual int dpiY() const = 0;
    // Starts the next sheet (the first one starts the job) in `orientation`; false when the
    // target refuses, with the reason in errorText().
    virtual bool beginSheet(QPageLayout::Orientation orientation) = 0;
    virtual void drawImage(const QImage& image, const QSize& size) = 0;
    // Ends the job; false when it could not be completed.
    virtual bool finish() = 0;
    virtual QString errorText() const = 0;
};

} // namespace qmr
