#pragma once

#include "exchange/exchangefilesystem.h"

namespace qmr {

// The real file system. Copies go through the kernel (copy_file_range, falling back to
// read and write), one file at a time and never whole in memory.
class DiskFileSystem : public ExchangeFileSystem
{
public:
    bool isDirectory(const QString& path) const override;
    bool isFile(const QString& path) const override;
    QStringList fileNames(const QString& dir) const override;
    QStringList directoryNames(const QString& dir) const override;
    qint64 fileSize(const QString& path) const override;
    bool makePath(const QString& dir) override;
    FileOutcome copyFile(const QString& source, const QString& target) override;
    FileOutcome writeFile(const QString& path, const QByteArray& bytes) override;
    std::optional<QStringList> readLines(const QString& path) const override;
    bool remove(const QString& path) override;

    // The temporary name a file is written under before it takes its own.
    static QString partName(const QString& target);
};

} // namespace qmr
