// Runs a fuzz target's code over files (its corpus, crash cases included) without the
// fuzzing engine, so that the plain and sanitized test suites keep every case that was ever
// found. Usage: replay_NAME FILE_OR_DIRECTORY...

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv)
{
    int cases = 0;
    for (int i = 1; i < argc; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        QStringList files;
        if (QFileInfo(path).isDir()) {
            for (const QString& name : QDir(path).entryList(QDir::Files, QDir::Name))
                files << QDir(path).filePath(name);
        } else {
            files << path;
        }
        for (const QString& file : files) {
            QFile f(file);
            if (!f.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "Cannot read %s\n", qPrintable(file));
                return 1;
            }
            const QByteArray bytes = f.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.constData()),
                                   size_t(bytes.size()));
            ++cases;
        }
    }
    std::printf("%d cases replayed\n", cases);
    return cases > 0 ? 0 : 1;
}
