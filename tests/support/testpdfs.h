#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace qmr::test {

// PDF files for the shortcut tests, written here: good ones with a text layer, and the kinds
// a reader must refuse quietly.
class TestPdfs
{
public:
    // A4 pages, one per entry, each with its lines printed large in black on white: the
    // words are the page's text layer. False when it could not be written.
    static bool printed(const QString& path, const QList<QStringList>& pages);
    // A one-page PDF encrypted with a user password that is not empty, so it opens only with
    // one.
    static bool encrypted(const QString& path);
    // A well-formed PDF whose page tree holds no page.
    static bool noPages(const QString& path);
    // A printed PDF cut in half, as a copy that stopped midway: its page tree and
    // cross-reference table, written last, are gone.
    static bool truncated(const QString& path);
    // Bytes that begin as a PDF and go on as noise.
    static bool garbage(const QString& path);

    // The files every reader must refuse without a word, by name: "encrypted", "truncated",
    // "garbage", "no pages" and "empty file" (no bytes at all).
    static QStringList refusedKinds();
    static bool refused(const QString& kind, const QString& path);
    // The data column "kind" of a test over every kind: "printed", then each refused one.
    static void addKindRows();

private:
    // A PDF of these objects (numbered from 1; the first is the catalog) with a correct
    // cross-reference table; `trailerExtra` goes into the trailer dictionary.
    static QByteArray assemble(const QList<QByteArray>& objects, const QByteArray& trailerExtra);
    static bool write(const QString& path, const QByteArray& bytes);
};

} // namespace qmr::test
