#pragma once

#include <QString>

namespace qmr {

// A PDF file that the printer writes under a directory of its own, made anew beside the chosen
// file ("<file>.<random>.qmrpart", readable by its owner only, and never a link), and that takes
// the chosen file's place only once it is whole. The printer opens its file by name, so a file
// or link planted at the chosen name, or beside it, is never written through: a link there is
// replaced, and what it points at stays as it was.
class PdfOutput
{
public:
    explicit PdfOutput(QString target);
    ~PdfOutput();
    PdfOutput(const PdfOutput&) = delete;
    PdfOutput& operator=(const PdfOutput&) = delete;

    // Makes the directory aside; false with the reason in errorString().
    bool open();
    // Where the printer is to write, once open.
    QString writtenPath() const;
    // Puts the written file under the chosen name, replacing what stands there; false with the
    // reason in errorString(), and nothing is left aside either way.
    bool place();
    // Removes what was written aside.
    void discard();

    const QString& target() const { return m_target; }
    QString errorString() const;

private:
    QString m_target;
    QString m_directory;
    int m_error = 0;
};

} // namespace qmr
