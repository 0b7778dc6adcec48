// An exchange directory as the import walks it: a small tree of directories, manifests, page
// files, names that are not UTF-8, hidden entries and links, made from the input in a
// temporary directory and imported into a real store. Whatever the tree holds, the import
// ends, never takes anything in through a link, and names every item as people can read it.

#include <QBuffer>
#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <cstring>
#include <fcntl.h>
#include <ftw.h>
#include <unistd.h>

#include "core/progress.h"
#include "core/settings.h"
#include "exchange/cabinetimporter.h"
#include "exchange/diskfilesystem.h"
#include "exchange/exchangequestions.h"
#include "exchange/exchangereader.h"
#include "exchange/nativename.h"
#include "fuzzstore.h"
#include "store/schema.h"
#include "store/session.h"

using namespace qmr;

namespace {

// What lies outside the tree and must never come in: its bytes are nowhere in the input.
const QByteArray kSecret = QByteArrayLiteral("outside the exchange tree: never to be imported");

// Names the format gives a meaning to; an entry's name is one of these or bytes of the input.
const char* const kKnownNames[] = {
    "QMR.txt",    "qmr.txt",    "Cabinet.txt",  "cabinet.txt",
    "Drawer.txt", "Folder.txt", "Document.txt", "DOCUMENT.TXT",
    "Page 1.jpg", "page 2.JPG", "Page -3.jpg",  "Page 99999999999.jpg",
    "scan.jpeg",  "x.bmp",      "notes.pdf",    "README"};
constexpr int kKnownCount = int(sizeof kKnownNames / sizeof *kKnownNames);

class Answers : public ExchangeQuestions
{
public:
    bool exportEmptyCabinet() override { return true; }
    bool importStructureOnly() override { return true; }
    bool insertExportDisk(int) override { return false; }
    bool insertImportDisk(int) override { return false; }
};

// The input, read a byte or a run at a time; past its end, zeros.
class Reader
{
public:
    Reader(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}
    bool atEnd() const { return m_at >= m_size; }
    uint8_t byte() { return m_at < m_size ? m_data[m_at++] : 0; }
    QByteArray bytes(size_t n)
    {
        n = std::min(n, m_size - std::min(m_at, m_size));
        QByteArray out(reinterpret_cast<const char*>(m_data + m_at), qsizetype(n));
        m_at += n;
        return out;
    }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_at = 0;
};

int removeEntry(const char* path, const struct stat*, int, struct FTW*)
{
    ::remove(path);
    return 0;
}

// Removes a tree without following its links, whatever bytes its names hold.
void removeTree(const QByteArray& path)
{
    ::nftw(path.constData(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
}

bool writeRaw(const QByteArray& path, const QByteArray& bytes)
{
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0644);
    if (fd < 0)
        return false;
    const bool written = ::write(fd, bytes.constData(), size_t(bytes.size())) == bytes.size();
    ::close(fd);
    return written;
}

QByteArray smallJpeg()
{
    QImage image(24, 16, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPG");
    return bytes;
}

struct World
{
    QTemporaryDir dir;
    QTemporaryDir work;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<Session> session;
    QByteArray root;    // the exchange tree, made anew for each input
    QByteArray outside; // what lies beside it
    QByteArray jpeg = smallJpeg();

    // On a file system in memory where there is one: every input writes a tree and a store.
    static QString base()
    {
        return QFileInfo(QStringLiteral("/dev/shm")).isWritable() ? QStringLiteral("/dev/shm")
                                                                  : QDir::tempPath();
    }

    World()
        : dir(base() + QStringLiteral("/qmr-fuzz-home-XXXXXX")),
          work(base() + QStringLiteral("/qmr-fuzz-tree-XXXXXX"))
    {
        const AppHome home(QFileInfo(dir.path()).canonicalFilePath());
        home.ensureExists();
        settings = std::make_unique<Settings>(home.file(QStringLiteral("fuzz.conf")));
        session = std::make_unique<Session>(home, *settings);
        StoreSchema::openDatabase(session->db(), home);
        session->db().execute(QStringLiteral("PRAGMA synchronous=OFF"));
        const QString canonical = QFileInfo(work.path()).canonicalFilePath();
        root = QFile::encodeName(canonical + QStringLiteral("/ex"));
        outside = QFile::encodeName(canonical + QStringLiteral("/outside"));
        ::mkdir(outside.constData(), 0755);
        ::mkdir((outside + "/dir").constData(), 0755);
        writeRaw(outside + "/secret.jpg", kSecret);
        writeRaw(outside + "/dir/Page 1.jpg", kSecret);
        writeRaw(outside + "/dir/QMR.txt", kSecret);
    }

    void clear()
    {
        removeTree(root);
        Database& db = session->db();
        Database::Transaction tx(db);
        for (const char* table : {"Page", "Document", "Folder", "Drawer", "Cabinet"})
            db.execute(QStringLiteral("DELETE FROM %1").arg(QLatin1String(table)));
        tx.commit();
        for (const char* sub : {"Pages", "Thumbs"})
            QDir(session->home().file(QLatin1String(sub))).removeRecursively();
    }
};

// The tree of the input below `root`. Each entry: a kind byte, the directory made so far that
// holds it, a name, and for a file its contents.
void buildTree(Reader& in, const World& world)
{
    QList<QByteArray> dirs{world.root};
    ::mkdir(world.root.constData(), 0755);
    for (int entries = 0; entries < 48 && !in.atEnd(); ++entries) {
        const uint8_t kind = in.byte() % 6;
        const QByteArray parent = dirs.at(in.byte() % dirs.size());
        const uint8_t nameByte = in.byte();
        QByteArray name = nameByte < kKnownCount * 8
                              ? QByteArray(kKnownNames[nameByte % kKnownCount])
                              : in.bytes(1 + nameByte % 24);
        name.replace('/', '_');
        name.replace('\0', '_');
        if (name.isEmpty() || name == "." || name == "..")
            continue;
        // Every name the walk can meet comes back byte for byte.
        if (NativeName::encode(NativeName::decode(name)) != name)
            fuzz::broken("a name does not come back as its bytes");
        const QByteArray path = parent + '/' + name;
        switch (kind) {
        case 0:
            if (::mkdir(path.constData(), 0755) == 0 && dirs.size() < 24)
                dirs << path;
            break;
        case 1: {
            const uint8_t length = in.byte();
            writeRaw(path, length == 255 ? world.jpeg : in.bytes(length % 160));
            break;
        }
        case 2:
            ::symlink((world.outside + "/secret.jpg").constData(), path.constData());
            break;
        case 3:
            ::symlink((world.outside + "/dir").constData(), path.constData());
            break;
        case 4:
            ::symlink(world.root.constData(), path.constData()); // a loop
            break;
        default:
            ::symlink("no such file", path.constData());
            break;
        }
    }
}

void check(World& world, const ImportReport& report)
{
    if (!report.error.isEmpty())
        fuzz::broken("the store refused what the import wrote");
    const QString root = QFile::decodeName(world.root) + QLatin1Char('/');
    const PagePaths& paths = world.session->paths();
    const Recordset pages = world.session->db().openRecordset(
        QStringLiteral("SELECT PageId, Name, ShortcutYN, Filename FROM Page"));
    for (int i = 0; i < pages.recordCount(); ++i) {
        const QString filename = pages.text(i, "Filename");
        if (pages.text(i, "ShortcutYN") == QLatin1String("Y")) {
            // A shortcut points into the tree, along no link.
            if (!filename.startsWith(root) || QFileInfo(filename).canonicalFilePath() != filename)
                fuzz::broken("a shortcut points outside the tree or through a link");
            continue;
        }
        QFile stored(paths.pagePath(pages.integer(i, "PageId"), filename));
        if (stored.open(QIODevice::ReadOnly) && stored.readAll() == kSecret)
            fuzz::broken("a file from outside the tree came in");
    }
    // Every name reads as text: no byte kept for opening a file is left in it.
    for (const char* table : {"Drawer", "Folder", "Document", "Page"}) {
        const Recordset names = world.session->db().openRecordset(
            QStringLiteral("SELECT Name FROM %1").arg(QLatin1String(table)));
        for (int i = 0; i < names.recordCount(); ++i) {
            const QString name = names.text(i, "Name");
            if (!QStringView(name).isValidUtf16() || NativeName::hasKeptBytes(name))
                fuzz::broken("an item's name holds bytes that are no text");
        }
    }
    for (const QString& line : report.skipped)
        if (line.contains(QLatin1String("is a link")) && !line.startsWith(QLatin1Char('\'') + root))
            fuzz::broken("a link outside the tree is named");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_exchange_tree";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static World world;
    if (QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size))
            .contains(kSecret))
        return 0;

    Reader in(data, size);
    buildTree(in, world);
    world.session->db().execute(
        QStringLiteral("INSERT INTO Cabinet (Name, Description, Storage) VALUES ('T', '', 0)"));
    const qint32 cabinet = world.session->db().lastInsertId();

    DiskFileSystem fs;
    Answers answers;
    CabinetImporter importer(*world.session, fs, answers);
    importer.setThumbnailThreads(1);
    SilentProgress progress;
    const QString root = NativeName::decode(world.root);
    ExchangeReader(fs).hasMarker(root);
    check(world, importer.importCabinet(cabinet, root, 1, progress));

    // The same tree's top as loose files, into a folder of their own.
    const qint32 folder = world.session->items().insertNamed(
        Level::Folder, world.session->items().insertNamed(Level::Drawer, cabinet, "D"), "F");
    check(world, importer.importFiles(folder, Level::Folder, root, FileTypeFilter(), progress));
    world.clear();
    return 0;
}
