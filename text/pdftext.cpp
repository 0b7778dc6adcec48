#include "text/pdftext.h"

#include <QFile>
#include <QPdfDocument>
#include <QPdfSelection>

namespace qmr {

namespace {

// The words of one line of a page's text, `line` starting at `lineStart` in the page's text,
// with boxes shared out of the line's box by their place in the line. The library gives boxes
// for selections only, and a selection costs it a reading of the page (some milliseconds), so
// a box is asked for a line, not for each word; a word's box is then close, not exact, where
// the letters differ in width.
void addLine(QList<TextIndex::Word>& words, const QString& line, const QRectF& lineBox)
{
    const qsizetype length = line.size();
    qsizetype at = 0;
    while (at < length) {
        while (at < length && line.at(at).isSpace())
            ++at;
        const qsizetype start = at;
        while (at < length && !line.at(at).isSpace())
            ++at;
        if (at == start)
            break;
        QRect box;
        if (lineBox.isValid()) {
            const qreal share = lineBox.width() / qreal(length);
            box = QRectF(lineBox.left() + share * qreal(start), lineBox.top(),
                         share * qreal(at - start), lineBox.height())
                      .toAlignedRect();
        }
        words << TextIndex::Word{line.mid(start, at - start), box};
    }
}

} // namespace

bool PdfText::isPdf(const QString& path)
{
    QFile file(path);
    // Readers accept the header anywhere in the first kilobyte, after other bytes.
    return file.open(QIODevice::ReadOnly) && file.read(1024).contains("%PDF-");
}

QList<TextIndex::Word> PdfText::words(const QString& path)
{
    QList<TextIndex::Word> words;
    QPdfDocument document;
    // A password is never asked for: an encrypted file fails here with the rest.
    if (document.load(path) != QPdfDocument::Error::None ||
        document.status() != QPdfDocument::Status::Ready)
        return words;
    int selections = 0;
    qreal top = 0;
    for (int page = 0; page < document.pageCount(); ++page) {
        // The library's characters are the text's UTF-16 units, so a line's place in the text
        // is its place for a selection. Its lines end in line breaks it puts in itself.
        const QString text = document.getAllText(page).text();
        qsizetype start = 0;
        while (start < text.size()) {
            qsizetype end = text.indexOf(QLatin1Char('\n'), start);
            if (end < 0)
                end = text.size();
            const qsizetype lineEnd =
                end > start && text.at(end - 1) == QLatin1Char('\r') ? end - 1 : end;
            const QString line = text.mid(start, lineEnd - start);
            QRectF box;
            if (!line.trimmed().isEmpty() && selections < kSelectedLines) {
                ++selections;
                box = document.getSelectionAtIndex(page, int(start), int(line.size()))
                          .boundingRectangle()
                          .translated(0, top);
            }
            addLine(words, line, box);
            start = end + 1;
        }
        top += document.pagePointSize(page).height();
    }
    return words;
}

} // namespace qmr
