#include "text/textreading.h"

#include "store/database.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "store/storeerror.h"
#include "text/textlog.h"
#include "text/unreadpages.h"

namespace qmr {

namespace {

// Pages come in runs (a scan, a drop of many files): the look waits until they stop.
constexpr int kSettleMs = 2000;

} // namespace

TextReading::TextReading(Database& db, const PagePaths& paths, QString languages,
                         QStringList worker, QObject* parent)
    : QObject(parent), m_db(db), m_paths(paths), m_languages(std::move(languages)),
      m_worker(std::move(worker)), m_index(paths.home().path())
{
    m_later.setSingleShot(true);
    m_later.setInterval(kSettleMs);
    connect(&m_later, &QTimer::timeout, this, &TextReading::refresh);
}

TextReading::~TextReading()
{
    // A look under way is only reading: it is waited for, its finding dropped.
    if (m_look) {
        m_look->disconnect(this);
        m_stop = true;
        m_look->wait();
        delete m_look;
    }
}

Attempt<> TextReading::start()
{
    try {
        m_index.open();
        m_index.attachTo(m_db);
    } catch (const StoreError& error) {
        qCWarning(lcText) << "No page text this run:" << error.message();
        return Failure(error.message());
    }
    m_reader = std::make_unique<TextReader>(m_index, m_worker + QStringList{m_languages});
    // Not at once: the window answers first, the look over every page comes after.
    m_later.start();
    return {};
}

void TextReading::refresh()
{
    if (!m_reader)
        return;
    m_later.stop();
    if (m_look) {
        m_again = true;
        return;
    }
    m_again = false;
    m_found.reset();
    // The stop flag goes along: the run's end must not wait for every page file of a slow disk.
    m_look = QThread::create(
        [this, storePath = m_db.path(), indexPath = m_index.path(), paths = m_paths] {
            m_found = lookOver(storePath, indexPath, paths, &m_stop);
        });
    connect(m_look, &QThread::finished, this, &TextReading::takeLook);
    m_look->start(QThread::LowPriority);
}

Attempt<UnreadPages::Sweep> TextReading::lookOver(const QString& storePath,
                                                  const QString& indexPath, const PagePaths& paths,
                                                  const std::atomic_bool* stop)
{
    const auto stopped = [stop] { return stop && stop->load(); };
    // A block is read in a few milliseconds; the connection is free again between blocks.
    constexpr int kBlock = 2000;
    try {
        Database store;
        store.open(storePath);
        QList<TextReader::Page> pages;
        for (qint32 after = -1;;) {
            const auto block = PageStore(store).pageFiles(after, kBlock);
            for (const auto& [id, stored] : block)
                pages << TextReader::Page{id, paths.pagePath(id, stored)};
            if (block.size() < kBlock || stopped())
                break;
            after = block.last().first;
        }
        store.close();
        Database text;
        text.open(indexPath);
        QHash<int, TextIndex::Entry> entries;
        for (int after = -1;;) {
            const QHash<int, TextIndex::Entry> block = TextIndex::entries(text, after, kBlock);
            for (auto entry = block.cbegin(); entry != block.cend(); ++entry) {
                entries.insert(entry.key(), entry.value());
                after = qMax(after, entry.key());
            }
            if (block.size() < kBlock || stopped())
                break;
        }
        text.close();
        return UnreadPages::of(pages, entries, stopped);
    } catch (const StoreError& error) {
        return Failure(error.message());
    }
}

void TextReading::takeLook()
{
    m_look->deleteLater();
    m_look = nullptr;
    if (m_found && m_found->ok() && m_reader) {
        try {
            // One commit for them all: a drawer of thousands of pages may have gone.
            m_index.together([&] {
                for (const int gone : m_found->value().gone)
                    m_index.drop(gone);
            });
            m_reader->enqueue(m_found->value().toRead);
        } catch (const StoreError& error) {
            qCWarning(lcText) << "The pages could not be looked over:" << error.message();
        }
    } else if (m_found && !m_found->ok()) {
        // The next look tries again; the pages' text is no reason to stop a command.
        qCWarning(lcText) << "The pages could not be looked over:" << m_found->why();
    }
    const bool looked = m_found && m_found->ok();
    m_found.reset();
    emit lookedOver(looked);
    if (m_again)
        refresh();
}

void TextReading::pageAdded(qint32)
{
    m_later.start();
}

void TextReading::setLanguages(const QString& languages)
{
    m_languages = languages;
    if (m_reader)
        m_reader->setWorker(m_worker + QStringList{m_languages});
}

} // namespace qmr
