#include "exchange/nativename.h"

#include <QFile>

#include "core/textfile.h"

namespace qmr {

namespace {

constexpr char16_t kKeptFirst = 0xDC80;
constexpr char16_t kKeptLast = 0xDCFF;

// A low surrogate of the kept range that is no part of a surrogate pair.
bool isKept(const QString& text, qsizetype i)
{
    const char16_t c = text.at(i).unicode();
    return c >= kKeptFirst && c <= kKeptLast && (i == 0 || !text.at(i - 1).isHighSurrogate());
}

} // namespace

QString NativeName::decode(const QByteArray& bytes)
{
    const QString text = QString::fromUtf8(bytes);
    if (text.toUtf8() == bytes)
        return text;
    QString kept;
    kept.reserve(bytes.size());
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        kept += QChar(b < 0x80 ? char16_t(b) : char16_t(0xDC00 + b));
    }
    return kept;
}

bool NativeName::hasKeptBytes(const QString& path)
{
    for (qsizetype i = 0; i < path.size(); ++i)
        if (isKept(path, i))
            return true;
    return false;
}

QByteArray NativeName::encode(const QString& path)
{
    if (!hasKeptBytes(path))
        return QFile::encodeName(path);
    QByteArray bytes;
    qsizetype start = 0;
    for (qsizetype i = 0; i < path.size(); ++i) {
        if (!isKept(path, i))
            continue;
        bytes += QStringView(path).mid(start, i - start).toUtf8();
        bytes += char(path.at(i).unicode() - 0xDC00);
        start = i + 1;
    }
    bytes += QStringView(path).mid(start).toUtf8();
    return bytes;
}

QString NativeName::display(const QString& path)
{
    if (!hasKeptBytes(path))
        return path;
    QString text = path;
    for (qsizetype i = 0; i < text.size(); ++i)
        if (isKept(path, i))
            text[i] = TextFile::decode(QByteArray(1, char(path.at(i).unicode() - 0xDC00))).at(0);
    return text;
}

} // namespace qmr
