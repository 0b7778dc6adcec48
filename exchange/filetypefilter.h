#pragma once

#include <QString>
#include <QStringList>

namespace qmr {

// Which files of a directory a loose-file import takes, by their extension. The test is a
// plain search in the list of chosen extensions, each followed by ",": so "pg" is found in
// "jpg," and a file without extension (searched for as a lone ",") is taken whenever some
// type was chosen. Choosing no type at all takes nothing.
class FileTypeFilter
{
public:
    // Every file.
    FileTypeFilter() = default;
    // The chosen types as the types dialog lists them; an empty list takes nothing.
    static FileTypeFilter of(const QStringList& types);

    bool takesAll() const { return m_all; }
    // The chosen types, lower-cased, each followed by ","; "" for every file and "zzzzz,"
    // for none.
    QString text() const { return m_text; }
    bool accepts(const QString& fileName) const;

    // The types of a directory's files in the order found, each once, upper-cased: the text
    // after the last ".", or the whole name when there is none.
    static QStringList typesIn(const QStringList& fileNames);
    // The text after the last ".", or "" when there is none.
    static QString extensionOf(const QString& fileName);

private:
    bool m_all = true;
    bool m_none = false;
    QString m_text;
};

} // namespace qmr
