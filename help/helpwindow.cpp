#include "help/helpwindow.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QStyleOptionFocusRect>

#include "core/textfile.h"
#include "help/helpfile.h"
#include "ui_helpwindow.h"

namespace qmr {

namespace {

// The window ends this far short of the main window's right and bottom edges.
constexpr int kShortOfParent = 800 / 15;

// `a` with a share of `b` mixed in: a tint that keeps the theme's own lightness.
QColor blend(const QColor& a, const QColor& b, qreal share)
{
    return QColor::fromRgbF(float(a.redF() + (b.redF() - a.redF()) * share),
                            float(a.greenF() + (b.greenF() - a.greenF()) * share),
                            float(a.blueF() + (b.blueF() - a.blueF()) * share));
}

} // namespace

HelpWindow::HelpWindow(const QString& helpPath, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::HelpWindow>()), m_path(helpPath)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    // Help is read like a document: the theme's text on the theme's text ground, whichever
    // theme that is. The labels take their colours from these roles.
    setBackgroundRole(QPalette::Base);
    m_ui->fraContents->installEventFilter(this);
    m_lines = {m_ui->lblLine0, m_ui->lblLine1, m_ui->lblLine2, m_ui->lblLine3, m_ui->lblLine4,
               m_ui->lblLine5, m_ui->lblLine6, m_ui->lblLine7, m_ui->lblLine8};
    QFont title = m_ui->lblTitle->font();
    title.setPointSizeF(title.pointSizeF() * 1.5);
    title.setBold(true);
    m_ui->lblTitle->setFont(title);
    QFont lineFont = m_ui->lblLine0->font();
    lineFont.setPointSizeF(lineFont.pointSizeF() * 1.25);
    for (QLabel* label : m_lines) {
        label->setFont(lineFont);
        label->setContentsMargins(6, 2, 6, 2);
        label->installEventFilter(this);
    }
    QFont pageFont = m_ui->lblPage->font();
    pageFont.setPointSizeF(pageFont.pointSizeF() * 1.2);
    m_ui->lblPage->setFont(pageFont);
    m_ui->lblPage->setContentsMargins(0, 12, 0, 0);
    setMinimumSize(520, 420);

    if (parent) {
        setWindowIcon(parent->window()->windowIcon());
        const QRect main = parent->window()->geometry();
        setGeometry(QRect(main.topLeft(), main.size() - QSize(kShortOfParent, kShortOfParent))
                        .united(QRect(main.topLeft(), minimumSize())));
    } else {
        resize(640, 480);
    }

    connect(m_ui->cmdNext, &QPushButton::clicked, this, &HelpWindow::cmdNext);
    connect(m_ui->cmdPrev, &QPushButton::clicked, this, &HelpWindow::cmdPrev);
    connect(m_ui->cmdTOC, &QPushButton::clicked, this, &HelpWindow::cmdTOC);
    connect(m_ui->cmdClose, &QPushButton::clicked, this, &QDialog::close);
    display();
}

HelpWindow::~HelpWindow() = default;

QLabel* HelpWindow::line(int index) const
{
    return m_lines.value(index);
}

void HelpWindow::display()
{
    const QStringList lines = TextFile::readLines(m_path).value_or(QStringList());
    if (m_topicNumber == -1) {
        showContents(HelpFile::readToc(lines).value_or(QStringList(HelpFile::kLines)));
        return;
    }
    if (const std::optional<QStringList> page =
            HelpFile::readPage(lines, m_topicNumber, m_pageNumber)) {
        m_lastGoodPage = m_pageNumber;
        showPage(*page);
        return;
    }
    // No such page: the page on screen stays.
    m_pageNumber = m_lastGoodPage;
    if (m_showsContents) // a topic without a first page: the table stays
        m_topicNumber = -1;
}

void HelpWindow::showContents(const QStringList& titles)
{
    // The page's buttons go: the focus goes to the list it came from.
    const bool focusOnPage =
        m_ui->cmdTOC->hasFocus() || m_ui->cmdPrev->hasFocus() || m_ui->cmdNext->hasFocus();
    m_showsContents = true;
    m_ui->fraContents->show();
    if (focusOnPage)
        m_ui->fraContents->setFocus(Qt::OtherFocusReason);
    m_ui->cmdTOC->hide();
    m_ui->cmdPrev->hide();
    m_ui->cmdNext->hide();
    m_ui->lblPage->hide();
    m_ui->lblTitle->setText(tr("Table of Contents"));
    for (int i = 0; i < m_lines.size(); ++i) {
        m_lines[i]->setText(titles.value(i));
        m_lines[i]->show();
    }
    m_marked = -1;
    mark(-1);
    update();
}

void HelpWindow::showPage(const QStringList& text)
{
    m_showsContents = false;
    for (QLabel* label : m_lines)
        label->hide();
    m_ui->cmdTOC->show();
    m_ui->cmdPrev->show();
    m_ui->cmdNext->show();
    // A topic opened from the list: the next page is the likely next step.
    if (m_ui->fraContents->hasFocus())
        m_ui->cmdNext->setFocus(Qt::OtherFocusReason);
    m_ui->fraContents->hide();
    m_ui->lblTitle->setText(m_topicTitle);
    m_ui->lblPage->setText(text.join(QLatin1Char('\n')));
    m_ui->lblPage->show();
    update();
}

void HelpWindow::openTopic(int index)
{
    if (!m_showsContents || index < 0 || index >= m_lines.size() ||
        m_lines[index]->text().isEmpty())
        return;
    m_topicNumber = index + 1;
    m_topicTitle = m_lines[index]->text();
    m_pageNumber = 1;
    m_lastGoodPage = 1;
    display();
}

void HelpWindow::cmdNext()
{
    if (m_showsContents)
        return;
    ++m_pageNumber;
    display();
}

void HelpWindow::cmdPrev()
{
    if (m_showsContents)
        return;
    --m_pageNumber;
    display();
}

void HelpWindow::cmdTOC()
{
    m_topicNumber = -1;
    display();
}

void HelpWindow::mark(int index)
{
    m_marked = index;
    for (int i = 0; i < m_lines.size(); ++i) {
        QLabel* label = m_lines[i];
        const bool marked = i == index;
        QFont font = label->font();
        font.setUnderline(marked);
        label->setFont(font);
        label->update(); // the mark's ground is drawn with the label (eventFilter)
    }
}

void HelpWindow::moveMark(int step)
{
    int index = m_marked;
    for (int tries = 0; tries < m_lines.size(); ++tries) {
        index = index < 0 ? (step > 0 ? 0 : int(m_lines.size()) - 1)
                          : (index + step + int(m_lines.size())) % int(m_lines.size());
        if (!m_lines[index]->text().isEmpty()) {
            mark(index);
            return;
        }
    }
}

bool HelpWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_ui->fraContents) {
        if (event->type() == QEvent::KeyPress && contentsKey(static_cast<QKeyEvent*>(event)->key()))
            return true;
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
            m_ui->fraContents->update();
        if (event->type() == QEvent::Paint && m_ui->fraContents->hasFocus()) {
            // The list is one stop of the Tab chain; the frame says where the keys go.
            QPainter painter(m_ui->fraContents);
            QStyleOptionFocusRect option;
            option.initFrom(m_ui->fraContents);
            option.backgroundColor = palette().color(QPalette::Base);
            style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, m_ui->fraContents);
        }
        return QDialog::eventFilter(watched, event);
    }
    const int index = int(m_lines.indexOf(qobject_cast<QLabel*>(watched)));
    if (index >= 0 && event->type() == QEvent::Paint && index == m_marked) {
        // The marked line stands on a tint of the theme's selection colour under the text
        // colour: unlike the selection's own pair, it reads as well as the other lines in any
        // theme. The label then draws its text over it.
        QPainter painter(m_lines[index]);
        painter.fillRect(m_lines[index]->rect(), blend(palette().color(QPalette::Base),
                                                       palette().color(QPalette::Highlight), 0.3));
    }
    if (index >= 0 && m_showsContents) {
        if (event->type() == QEvent::Enter || event->type() == QEvent::MouseMove) {
            if (index != m_marked)
                mark(index);
        } else if (event->type() == QEvent::MouseButtonRelease) {
            openTopic(index);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

bool HelpWindow::contentsKey(int key)
{
    if (!m_showsContents)
        return false;
    if (key >= Qt::Key_1 && key <= Qt::Key_9) {
        openTopic(key - Qt::Key_1);
        return true;
    }
    if (key == Qt::Key_Down || key == Qt::Key_Up) {
        moveMark(key == Qt::Key_Down ? 1 : -1);
        return true;
    }
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && m_marked >= 0) {
        openTopic(m_marked);
        return true;
    }
    return false;
}

void HelpWindow::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (contentsKey(key))
        return;
    if (!m_showsContents) {
        if (key == Qt::Key_Right || key == Qt::Key_PageDown) {
            cmdNext();
            return;
        }
        if (key == Qt::Key_Left || key == Qt::Key_PageUp) {
            cmdPrev();
            return;
        }
        if (key == Qt::Key_Home || key == Qt::Key_Backspace) {
            cmdTOC();
            return;
        }
    }
    QDialog::keyPressEvent(event);
}

void HelpWindow::paintEvent(QPaintEvent* event)
{
    // The table of contents stands on a background picture; pages on the plain ground. The
    // picture is a faint tint of the theme's selection colour over its text ground, so the
    // text stays as readable as anywhere else in a light theme and a dark one alike.
    if (m_showsContents) {
        QPainter painter(this);
        const QColor ground = palette().color(QPalette::Base);
        QLinearGradient gradient(rect().topLeft(), rect().bottomRight());
        gradient.setColorAt(0, blend(ground, palette().color(QPalette::Highlight), 0.12));
        gradient.setColorAt(1, ground);
        painter.fillRect(rect(), gradient);
        const QIcon icon = windowIcon();
        if (!icon.isNull()) {
            const int side = qMin(160, height() / 3);
            painter.setOpacity(0.12);
            icon.paint(&painter, QRect(width() - side - 32, height() - side - 72, side, side));
        }
        return;
    }
    QDialog::paintEvent(event);
}

} // namespace qmr
