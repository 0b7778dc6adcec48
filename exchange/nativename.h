#pragma once

#include <QByteArray>
#include <QString>

namespace qmr {

// A file name as a directory holds it: bytes, meant as UTF-8 on this system, but often in a
// single-byte code page on old discs and in archives from other systems. A name that is not
// valid UTF-8 is carried in a QString with each byte above 127 kept as a lone low surrogate
// (U+DC80 to U+DCFF), so that the file is opened by its real bytes; people, and the items
// made from it, see it read as Windows-1252.
class NativeName
{
public:
    // The name as the program carries it: plain text when the bytes are UTF-8.
    static QString decode(const QByteArray& bytes);
    // The bytes of a path, those of its kept bytes included.
    static QByteArray encode(const QString& path);
    // The path as people read it: kept bytes as Windows-1252.
    static QString display(const QString& path);
    // Whether the path holds kept bytes (a name that is not UTF-8).
    static bool hasKeptBytes(const QString& path);
};

} // namespace qmr
