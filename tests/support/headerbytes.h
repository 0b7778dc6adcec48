#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace qmr::test {

// Numbers of a picture's header: the lowest byte first as BMP stores them, or the highest
// first as JPEG and PNG do.
inline QByteArray littleEndian(quint32 value, int bytes)
{
    QByteArray out;
    for (int i = 0; i < bytes; ++i)
        out += char(value >> (8 * i));
    return out;
}

inline QByteArray bigEndian(quint32 value, int bytes)
{
    QByteArray out;
    for (int i = bytes - 1; i >= 0; --i)
        out += char(value >> (8 * i));
    return out;
}

} // namespace qmr::test
