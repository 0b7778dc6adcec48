#pragma once

#include <QCoreApplication>

#include "core/partfile.h"
#include "exchange/exchangefilesystem.h"

namespace qmr {

// The real file system, which takes paths as NativeName carries them. Copies go through the
// kernel (copy_file_range, falling back to read and write), one file at a time and never whole
// in memory, into a file aside that is made anew (never through a link), synced, and then put
// in place.
class DiskFileSystem : public ExchangeFileSystem
{
    Q_DECLARE_TR_FUNCTIONS(qmr::DiskFileSystem)

public:
    bool isDirectory(const QString& path) const override;
    bool isFile(const QString& path) const override;
    DirectoryListing list(const QString& dir) const override;
    qint64 fileSize(const QString& path) const override;
    bool makePath(const QString& dir) override;
    FileOutcome copyFile(const QString& source, const QString& target, LinkRule links) override;
    FileOutcome copyIntoStore(const QString& source, const QString& target,
                              QByteArray* contents = nullptr) override;
    FileOutcome writeFile(const QString& path, const QByteArray& bytes) override;
    std::optional<QStringList> readLines(const QString& path) const override;
    bool remove(const QString& path) override;

private:
    static FileOutcome copy(int in, const QString& source, const QString& target,
                            PartFile::Placing placing, bool sync);
    static FileOutcome placed(PartFile& part, PartFile::Placing placing, bool sync);
};

} // namespace qmr
