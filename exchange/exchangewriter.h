#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

#include "exchange/exchangefilesystem.h"
#include "store/itemstore.h"

namespace qmr {

// Writes the exchange directory: a directory per item with a cleaned name, the marker, the
// manifests that carry what a file system cannot (descriptions, a document's date and
// amount), and the page files. Text files are UTF-8 with CR LF line ends, so that they read
// the same wherever the directory travels.
class ExchangeWriter
{
    Q_DECLARE_TR_FUNCTIONS(qmr::ExchangeWriter)

public:
    static const QString kMarkerFile;   // "QMR.txt"
    static const QString kCabinetFile;  // "Cabinet.txt"
    static const QString kDrawerFile;   // "Drawer.txt"
    static const QString kFolderFile;   // "Folder.txt"
    static const QString kDocumentFile; // "Document.txt"

    explicit ExchangeWriter(ExchangeFileSystem& fs) : m_fs(fs) {}

    // The name without \ / : * ? " < > | and ".", nothing else changed; may be empty.
    static QString cleanFileName(const QString& name);
    // The text before the last ".", or the whole name when it has none.
    static QString stripExtension(const QString& name);
    // A document's directory: its name without extension, cleaned ("Bill.2.pdf": "Bill2").
    static QString documentDirectoryName(const QString& documentName);
    // A line break (CR LF, or CR or LF alone) becomes "|", so a description fits one line.
    static QString encodeDescription(const QString& text);
    // A page's file in the exchange directory: "Page N.jpg" when the stored file ends in
    // "jpg" (by its last three letters, so ".jpeg" does not count), else the stored file's
    // own name.
    static QString pageFileName(const QString& storedPath, qint32 pageNumber);
    // `name`, or, when that name is in `taken` (lower-cased, as names are matched on reading),
    // the name with " (2)", " (3)" and so on before its extension: "Page 3 (2).jpg" still
    // reads as page 3. The name given is added to `taken`.
    static QString distinctName(const QString& name, QSet<QString>& taken);
    // The names of a directory that no page's file may take: the marker and the manifests.
    static QSet<QString> reservedNames();
    static QString dateText(const QDate& date);
    static QString amountText(double amount);

    static QStringList markerLines(const QDateTime& when);
    static QStringList descriptionLines(const QString& description);
    static QStringList documentLines(const ItemManifest& document);

    // Each makes the file's directory first and writes only when that worked. A description
    // file is written only for a description that is not Null, a document file only when the
    // date or the description is not Null; otherwise nothing is done.
    FileOutcome writeMarkerFile(const QString& path, const QDateTime& when);
    FileOutcome writeDescriptionFile(const QString& path,
                                     const std::optional<QString>& description);
    FileOutcome writeDocumentFile(const QString& path, const ItemManifest& document);
    // Makes the target's directory, then copies the page file over whatever stands there.
    FileOutcome copyPageFile(const QString& source, const QString& target, LinkRule links);

private:
    FileOutcome writeLines(const QString& path, const QStringList& lines);
    bool makeDirectoryOf(const QString& path);

    ExchangeFileSystem& m_fs;
};

} // namespace qmr
