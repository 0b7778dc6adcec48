#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <algorithm>

namespace qmr::test {

inline QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(unreadable)");
}

inline bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

// Numbers of a picture's header: the lowest byte first as BMP stores them, or the highest
// first as JPEG and PNG do.
inline QByteArray le(quint32 value, int bytes)
{
    QByteArray b;
    for (int i = 0; i < bytes; ++i)
        b += char((value >> (8 * i)) & 0xFF);
    return b;
}
inline QByteArray be(quint32 value, int bytes)
{
    QByteArray b = le(value, bytes);
    std::reverse(b.begin(), b.end());
    return b;
}

} // namespace qmr::test
