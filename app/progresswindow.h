#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>

#include "core/progress.h"

class QLabel;
class QPushButton;

namespace qmr {

class BarWidget;

// frmProgress: a modeless window with a bar, a status line and, when asked, Cancel. It
// refuses to close while work runs and lets events through only at every 20th step.
class ProgressWindow : public QDialog, public Progress
{
    Q_OBJECT
public:
    explicit ProgressWindow(QWidget* parent = nullptr);

    void start(const QString& title, int minimum, int maximum) override;
    void step(const QString& status) override;
    void end() override;
    void showCancel() override;
    bool stopped() const override { return m_stopped; }

    const BarWidget* bar() const { return m_bar; }
    QString status() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void stopProgress();
    void showStatus();

    // A person reads a few names a second; setting the line for every file of a large batch
    // costs the window a layout and a repaint each time.
    static constexpr int kStatusEveryMs = 50;

    QLabel* m_status;
    BarWidget* m_bar;
    QPushButton* m_cancel;
    QString m_latest;
    QElapsedTimer m_statusShown;
    QTimer m_statusLater;
    bool m_closeAllowed = true;
    bool m_stopped = true;
};

} // namespace qmr
