#include "text/readingline.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStatusBar>
#include <QToolButton>

#include "text/textreader.h"

namespace qmr {

ReadingLine::ReadingLine(TextReader& reader, QStatusBar& bar)
    : QWidget(&bar), m_reader(reader), m_bar(bar), m_label(new QLabel(this)),
      m_pause(new QToolButton(this))
{
    m_label->setObjectName(QStringLiteral("lblReadingText"));
    m_pause->setObjectName(QStringLiteral("cmdPauseReading"));
    m_pause->setText(tr("Pause"));
    m_pause->setAutoRaise(true);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_label);
    layout->addWidget(m_pause);
    m_bar.addPermanentWidget(this);
    m_bar.setSizeGripEnabled(false);
    m_bar.hide();
    connect(&m_reader, &TextReader::progress, this, &ReadingLine::showProgress);
    connect(&m_reader, &TextReader::idle, &m_bar, &QStatusBar::hide);
    connect(&m_reader, &TextReader::failed, this, [this](const QString& message) {
        m_label->setText(message);
        m_pause->hide();
        m_bar.show();
    });
    connect(m_pause, &QToolButton::clicked, this, &ReadingLine::togglePause);
}

void ReadingLine::showProgress(int done, int total)
{
    if (total <= 0)
        return;
    m_label->setText(tr("Reading text: %1 of %2 pages").arg(done).arg(total));
    m_pause->show(); // gone while a failure was said
    m_bar.show();
}

void ReadingLine::togglePause()
{
    m_reader.setPaused(!m_reader.isPaused());
    m_pause->setText(m_reader.isPaused() ? tr("Resume") : tr("Pause"));
}

} // namespace qmr
