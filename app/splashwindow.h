#pragma once

#include <QWidget>

class QLabel;

namespace qmr {

class BarWidget;

// frmSplash: the start-up window with a status text and a bar.
class SplashWindow : public QWidget
{
    Q_OBJECT
public:
    explicit SplashWindow(QWidget* parent = nullptr);

    void showSplash(const QString& status, int minimum, int maximum);
    void splashStep(const QString& status);
    void setStatus(const QString& status);
    // Closes the window for good: its native window goes, so that no screen reader is told
    // of a window that is not there.
    void finish();
    QString status() const;
    const BarWidget* bar() const { return m_bar; }

private:
    QLabel* m_status;
    BarWidget* m_bar;
};

} // namespace qmr
