#pragma once

#include <QDialog>
#include <QVector>
#include <memory>

class QLabel;

namespace Ui {
class HelpWindow;
}

namespace qmr {

// frmHelp: the help text shown a page at a time: a table of contents of up to nine topics,
// and each topic's numbered pages of up to nine lines. The file is read again at every
// display, so a help text edited while the window is open shows at once.
class HelpWindow : public QDialog
{
    Q_OBJECT
public:
    explicit HelpWindow(const QString& helpPath, QWidget* parent = nullptr);
    ~HelpWindow() override;

    // -1 while the table of contents is shown.
    int topicNumber() const { return m_topicNumber; }
    const QString& topicTitle() const { return m_topicTitle; }
    int pageNumber() const { return m_pageNumber; }
    int lastGoodPage() const { return m_lastGoodPage; }
    bool showsContents() const { return m_showsContents; }
    // The table line under the mouse or chosen with the arrow keys, -1 for none.
    int markedLine() const { return m_marked; }
    QLabel* line(int index) const;

    // A click on a line of the table (0 to 8); nothing unless the table is shown.
    void openTopic(int index);
    void cmdNext();
    void cmdPrev();
    void cmdTOC();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void display();
    void showContents(const QStringList& titles);
    void showPage(const QStringList& text);
    void mark(int index);
    // The keys of the table of contents; true when the key did something there.
    bool contentsKey(int key);
    void moveMark(int step);

    std::unique_ptr<Ui::HelpWindow> m_ui;
    QVector<QLabel*> m_lines;
    QString m_path;
    int m_topicNumber = -1;
    QString m_topicTitle;
    int m_pageNumber = 1;
    int m_lastGoodPage = 1;
    bool m_showsContents = false;
    int m_marked = -1;
};

} // namespace qmr
