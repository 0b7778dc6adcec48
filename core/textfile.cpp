#include "core/textfile.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>

namespace qmr {

namespace {

// Windows-1252 differs from Latin-1 only in 0x80..0x9F; the five unassigned codes map to the
// C1 controls of the same value, as the usual converters do.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString decodeCp1252(const QByteArray& bytes)
{
    QString text;
    text.resize(bytes.size());
    QChar* out = text.data();
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        *out++ = QChar(b >= 0x80 && b <= 0x9F ? kCp1252High[b - 0x80] : char16_t(b));
    }
    return text;
}

} // namespace

QString TextFile::decode(const QByteArray& bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (utf8.hasError())
        return decodeCp1252(bytes);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

QStringList TextFile::splitLines(const QString& text)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c != QLatin1Char('\n') && c != QLatin1Char('\r'))
            continue;
        lines << text.mid(start, i - start);
        if (c == QLatin1Char('\r') && i + 1 < text.size() && text.at(i + 1) == QLatin1Char('\n'))
            ++i;
        start = i + 1;
    }
    if (start < text.size())
        lines << text.mid(start);
    return lines;
}

std::optional<QStringList> TextFile::readLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return splitLines(decode(file.readAll()));
}

QByteArray TextFile::encodeLines(const QStringList& lines, const QString& eol)
{
    QByteArray bytes;
    for (const QString& line : lines)
        bytes += (line + eol).toUtf8();
    return bytes;
}

bool TextFile::writeLines(const QString& path, const QStringList& lines, const QString& eol)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = encodeLines(lines, eol);
    if (file.write(bytes) != bytes.size())
        return false;
    return file.commit();
}

} // namespace qmr
