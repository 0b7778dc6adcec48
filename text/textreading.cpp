#include "text/textreading.h"

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

TextReading::~TextReading() = default;

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
    try {
        QList<TextReader::Page> pages;
        for (const auto& [id, stored] : PageStore(m_db).pageFiles())
            pages << TextReader::Page{id, m_paths.pagePath(id, stored)};
        const UnreadPages::Sweep sweep = UnreadPages::of(pages, m_index.entries());
        for (const int gone : sweep.gone)
            m_index.drop(gone);
        m_reader->enqueue(sweep.toRead);
    } catch (const StoreError& error) {
        // The next look tries again; the pages' text is no reason to stop a command.
        qCWarning(lcText) << "The pages could not be looked over:" << error.message();
    }
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
