#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include "tests/support/headerbytes.h"

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

} // namespace qmr::test
