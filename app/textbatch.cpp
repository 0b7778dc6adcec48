#include "app/textbatch.h"

#include <QEventLoop>

#include "core/pagewords.h"
#include "store/cabinetlock.h"
#include "store/session.h"
#include "store/storeerror.h"
#include "store/textindex.h"
#include "text/textfind.h"
#include "text/textreading.h"

namespace qmr {

int TextBatch::find(const QString& words)
{
    const PageWords query = PageWords::parse(words);
    if (query.isEmpty()) {
        m_err << "quillmere: " << tr("--find needs words to look for.") << '\n';
        return 1;
    }
    try {
        TextIndex index(m_session.paths().home().path());
        index.openAsItIs();
        // No cabinet has been opened in a run without a window: locked ones stay out.
        const CabinetLock locks(m_session.db());
        const QList<TextFind::Document> found =
            TextFind::documents(m_session.db(), index, query, locks);
        for (const TextFind::Document& document : found) {
            QStringList numbers;
            for (const qint32 number : document.pageNumbers)
                numbers << QString::number(number);
            m_out << document.names.join(QLatin1Char('/')) << '\t'
                  << numbers.join(QLatin1String(", ")) << '\n';
        }
        return found.isEmpty() ? 1 : 0;
    } catch (const StoreError& e) {
        m_err << "quillmere: " << e.message() << '\n';
        return 1;
    }
}

int TextBatch::readText(const QString& languages, const QStringList& worker)
{
    TextReading reading(m_session.db(), m_session.paths(), languages, worker);
    if (const Attempt<> started = reading.start(); !started) {
        m_err << "quillmere: " << started.why() << '\n';
        return 1;
    }
    TextReader& reader = *reading.reader();
    QEventLoop loop;
    int status = 0;
    QObject::connect(&reader, &TextReader::progress, &loop, [this](int done, int total) {
        m_out << tr("Reading text: %1 of %2 pages").arg(done).arg(total) << '\n';
        m_out.flush();
    });
    QObject::connect(&reader, &TextReader::idle, &loop, &QEventLoop::quit);
    QObject::connect(&reader, &TextReader::failed, &loop, [&](const QString& message) {
        m_err << "quillmere: " << message << '\n';
        status = 1;
        loop.quit();
    });
    // Done when the look finds nothing to read, or when what it found is read.
    QObject::connect(&reading, &TextReading::lookedOver, &loop, [&](bool looked) {
        if (!looked) {
            m_err << "quillmere: " << tr("The pages could not be looked over; see the log.")
                  << '\n';
            status = 1;
            loop.quit();
        } else if (reader.isIdle()) {
            loop.quit();
        }
    });
    reading.refresh();
    loop.exec();
    if (status == 0)
        m_out << tr("The text of every page is read.") << '\n';
    return status;
}

} // namespace qmr
