#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "exchange/exchangefilesystem.h"

namespace qmr {

// The values of a document manifest, as the text it holds ("" where a key or its value is
// missing).
struct DocumentValues
{
    QString date;
    QString description; // decoded
    QString amount;
};

// Reads an exchange directory. Names of files and keys are matched without regard to case,
// so that a directory written on a system that ignores case (or by hand) reads the same; a
// line that means nothing to the reader is passed over.
class ExchangeReader
{
public:
    explicit ExchangeReader(const ExchangeFileSystem& fs) : m_fs(fs) {}

    // Each "|" becomes a line break (CR LF).
    static QString decodeDescription(const QString& text);
    // The description of "Cabinet.txt", "Drawer.txt" or "Folder.txt": the first non-empty
    // line after "[Description]", decoded; "" when there is none.
    static QString parseDescription(const QStringList& lines);
    static DocumentValues parseDocument(const QStringList& lines);

    // The five file names of the format, which are never pages: marker and manifests.
    static bool isExchangeFile(const QString& fileName);
    // What counts as a loose file above the documents: everything but the marker and the
    // cabinet, drawer and folder manifests.
    static bool isLooseFile(const QString& fileName);
    // "Page 12.jpg" is page 12: a name that begins "page " in any case gives the number at
    // the start of the rest; nothing for other names.
    static std::optional<qint32> pageNumberOf(const QString& fileName);

    // The entry of `names` that is `name` without regard to case; "" when there is none.
    static QString findIn(const QStringList& names, const QString& name);
    // The name of `dir`'s file that is `name` without regard to case; "" when there is none.
    QString findFile(const QString& dir, const QString& name) const;
    bool hasMarker(const QString& dir) const;
    // The manifest's values; nothing when the file cannot be read.
    std::optional<QString> readDescription(const QString& path) const;
    std::optional<DocumentValues> readDocument(const QString& path) const;

private:
    const ExchangeFileSystem& m_fs;
};

} // namespace qmr
