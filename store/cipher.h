#pragma once

#include <QString>

namespace qmr {

// The stored form of a cabinet password: a shift of each character by the key, the key
// repeating as needed. Characters are taken as Latin-1 values; anything beyond passes as is.
class Cipher
{
public:
    static QString key() { return QStringLiteral("K4TDW9HAAR"); }
    static QString fallbackKey() { return QStringLiteral("QMXRTPAVKD"); }
};

QString encryptText(const QString& clear, const QString& key);
QString decryptText(const QString& stored, const QString& key);

} // namespace qmr
