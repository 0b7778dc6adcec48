#include "print/pdfoutput.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "core/partfile.h"

namespace qmr {

namespace {

// Fresh random names tried before giving up: only a directory flooded with planted names runs
// out of them.
constexpr int kNameTries = 16;

} // namespace

PdfOutput::PdfOutput(QString target) : m_target(std::move(target))
{
}

PdfOutput::~PdfOutput()
{
    discard();
}

bool PdfOutput::open()
{
    for (int i = 0; i < kNameTries; ++i) {
        const QString directory = m_target +
                                  QStringLiteral(".%1").arg(QRandomGenerator::global()->generate(),
                                                            8, 16, QLatin1Char('0')) +
                                  QLatin1String(PartFile::kSuffix);
        // mkdir never takes what stands at the name, a link least of all; the printer's file is
        // then made where nobody else can put anything.
        if (::mkdir(QFile::encodeName(directory).constData(), 0700) == 0) {
            m_directory = directory;
            m_error = 0;
            return true;
        }
        if (errno != EEXIST) {
            m_error = errno;
            return false;
        }
    }
    m_error = EEXIST;
    return false;
}

QString PdfOutput::writtenPath() const
{
    return m_directory + QLatin1Char('/') + QFileInfo(m_target).fileName();
}

bool PdfOutput::place()
{
    if (m_directory.isEmpty()) {
        m_error = EBADF;
        return false;
    }
    const bool placed = std::rename(QFile::encodeName(writtenPath()).constData(),
                                    QFile::encodeName(m_target).constData()) == 0;
    if (!placed)
        m_error = errno;
    discard();
    return placed;
}

void PdfOutput::discard()
{
    if (m_directory.isEmpty())
        return;
    ::unlink(QFile::encodeName(writtenPath()).constData());
    ::rmdir(QFile::encodeName(std::exchange(m_directory, QString())).constData());
}

QString PdfOutput::errorString() const
{
    return QString::fromLocal8Bit(std::strerror(m_error));
}

} // namespace qmr
