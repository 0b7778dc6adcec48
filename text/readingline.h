#pragma once

#include <QWidget>

class QLabel;
class QStatusBar;
class QToolButton;

namespace qmr {

class TextReader;

// The quiet line at the foot of the main window while pages are read: "Reading text: 12 of
// 240 pages", with Pause. The line is there only while there is something to read, or to
// say why nothing can be read.
class ReadingLine : public QWidget
{
    Q_OBJECT

public:
    ReadingLine(TextReader& reader, QStatusBar& bar);

private:
    void showProgress(int done, int total);
    void togglePause();

    TextReader& m_reader;
    QStatusBar& m_bar;
    QLabel* m_label;
    QToolButton* m_pause;
};

} // namespace qmr
