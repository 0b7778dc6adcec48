#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace qmr {

// The text files that come from outside (templates, samples, help, exchange manifests): read
// as UTF-8, or as Windows-1252 when the bytes are not valid UTF-8, which is what older files
// written by hand on other systems are. Everything the program writes is UTF-8.
class TextFile
{
public:
    // The decoded text; a UTF-8 byte-order mark is dropped.
    static QString decode(const QByteArray& bytes);
    // Lines without their CR/LF ends; nothing when the file cannot be read.
    static std::optional<QStringList> readLines(const QString& path);
    static QStringList splitLines(const QString& text);
    // The bytes that writeLines writes: UTF-8, each line ended by `eol`.
    static QByteArray encodeLines(const QStringList& lines,
                                  const QString& eol = QStringLiteral("\n"));
    // Replaces the file through a temporary one, so a failed write never leaves half a file.
    // `eol` ends every line ("\n", or "\r\n" for files that travel).
    static bool writeLines(const QString& path, const QStringList& lines,
                           const QString& eol = QStringLiteral("\n"));
};

} // namespace qmr
