#include "store/cipher.h"

namespace qmr {

namespace {

QString shift(const QString& text, QString key, int direction)
{
    if (key.isEmpty())
        key = Cipher::fallbackKey();
    QString out;
    out.reserve(text.size());
    int position = 0;
    for (const QChar ch : text) {
        position = position % key.size() + 1;
        const int c = ch.unicode();
        if (c > 255) {
            out += ch;
            continue;
        }
        const int k = key.at(position - 1).unicode() - 64;
        int e = c + direction * k;
        if (e > 255)
            e -= 256;
        if (e < 0)
            e += 256;
        out += QChar(e);
    }
    return out;
}

} // namespace

QString encryptText(const QString& clear, const QString& key)
{
    return shift(clear, key, +1);
}

QString decryptText(const QString& stored, const QString& key)
{
    return shift(stored, key, -1);
}

} // namespace qmr
