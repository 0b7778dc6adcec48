#pragma once

#include <QObject>

#include "core/progress.h"

class QFontMetrics;
class QFrame;
class QLabel;

namespace qmr {

// The bar and status line that the export and import dialogs carry in themselves: the trough
// shpBackground with the filled part shpForeground in it, and lblStatus. The filled part is
// position / (maximum - minimum + 1) of the trough, so it never quite fills before the end;
// events pass at every 20th step and at every status line, which is when a Cancel is heard.
// The stop flag is the dialog's: starting the bar again does not clear it.
class DialogProgress : public QObject, public Progress
{
    Q_OBJECT
public:
    DialogProgress(QLabel* status, QFrame* background, QFrame* foreground,
                   QObject* parent = nullptr);

    void start(const QString& title, int minimum, int maximum) override;
    void step(const QString& status) override;
    void end() override;
    void showCancel() override {}
    bool stopped() const override { return m_stopped; }

    void requestStop() { m_stopped = true; }
    void clearStop() { m_stopped = false; }
    // "action text" in the status line; a text too wide loses characters from its front and
    // shows "..." there instead.
    void showStatus(const QString& action, const QString& text);
    static QString fitStatus(const QString& action, const QString& text,
                             const QFontMetrics& metrics, int width);

    int position() const { return m_position; }
    int maximum() const { return m_max; }
    // The filled share of the trough, 0 to 1.
    double fraction() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void draw(int position);
    void layoutBar();

    QLabel* m_status;
    QFrame* m_background;
    QFrame* m_foreground;
    int m_min = 0;
    int m_max = 0;
    int m_position = 0;
    bool m_stopped = false;
};

} // namespace qmr
