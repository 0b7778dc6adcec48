#pragma once

#include <QWidget>

namespace qmr {

// The bar of the splash and progress windows: a trough and a filled part whose width is
// position / (max - min + 1) of the trough, so that it never quite fills before the end.
class BarWidget : public QWidget
{
    Q_OBJECT
public:
    explicit BarWidget(QWidget* parent = nullptr);

    void setRange(int minimum, int maximum);
    // Returns true when the position is a multiple of 20 (the caller then lets events run).
    bool draw(int position);
    int position() const { return m_position; }
    int minimum() const { return m_min; }
    int maximum() const { return m_max; }
    // The filled fraction of the trough, 0 to 1.
    double fraction() const;
    QSize sizeHint() const override { return QSize(300, 18); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_min = 0;
    int m_max = 0;
    int m_position = 0;
};

} // namespace qmr
