#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

#include "store/textindex.h"

namespace qmr {

// The reading worker: the program's own executable started with "--text-worker LANGUAGES".
// It reads a request a line on its standard input, "<page id><tab><file>", and answers each
// on its standard output with one line of JSON: {"page": id, "words": [[text, x, y, w, h] ...]}.
// Its first line says it is ready, or why it cannot read: {"ready": true} or
// {"failure": "..."}. A recogniser that crashes takes only this process down, and so does a
// PDF that brings down the library reading its words.
class TextWorker
{
public:
    static constexpr const char* kOption = "--text-worker";
    // Runs the worker until its input ends; the exit status.
    static int run(int argc, char** argv);

    // The request line for a page.
    static QByteArray request(int pageId, const QString& path);
    // An answer line as the reader receives it.
    struct Answer
    {
        bool ready = false;
        QString failure;
        int pageId = -1;
        QList<TextIndex::Word> words;
    };
    static std::optional<Answer> parse(const QByteArray& line);
    static QByteArray answer(int pageId, const QList<TextIndex::Word>& words);
};

} // namespace qmr
