#pragma once

#include <QObject>
#include <QThread>
#include <QStringList>
#include <QTimer>
#include <atomic>
#include <memory>
#include <optional>

#include "core/attempt.h"
#include "core/pagenotifier.h"
#include "store/textindex.h"
#include "text/textreader.h"
#include "text/unreadpages.h"

namespace qmr {

class Database;
class PagePaths;

// The reading of the pages' text in a run: the index in the home, the worker that reads, and
// which pages wait for it. Pages are read oldest first; what is not read when the run ends
// is read at the next start. A page that reaches a document has the pages looked over again
// shortly after, so that a scan of many pages starts reading once.
class TextReading : public QObject, public PageNotifier
{
    Q_OBJECT

public:
    // `worker`: the program and arguments that start a worker, without the languages.
    TextReading(Database& db, const PagePaths& paths, QString languages, QStringList worker,
                QObject* parent = nullptr);
    ~TextReading() override;

    // Opens the index and queues the pages whose text is not read; entries of pages that
    // are gone are dropped. The failure says why no text can be read.
    Attempt<> start();
    // Looks over the pages again, in a thread of its own: a hundred thousand pages' files
    // take longer to look at than the window may stand still. A look asked for while one
    // runs follows it.
    void refresh();
    // What a look over the pages finds: the store's pages and the index's entries, each read
    // a block at a time on connections of its own (so that the reader and the window never
    // wait long for the files), and each page's file looked at. The failure says why not.
    // `stop`, when set, ends it early (the run is ending): what it found then is of no use.
    static Attempt<UnreadPages::Sweep> lookOver(const QString& storePath, const QString& indexPath,
                                                const PagePaths& paths,
                                                const std::atomic_bool* stop = nullptr);
    // The pages are read in these languages from the next page on; pages read before keep
    // their text.
    void setLanguages(const QString& languages);
    const QString& languages() const { return m_languages; }
    void pageAdded(qint32 pageId) override;
    // A scanned page is saved after its row is made, an edited one when the person says so:
    // either way its file is new, and the pages are looked over again.
    void pictureSaved(qint32 pageId) override { pageAdded(pageId); }
    void picturesArrived() override { pageAdded(-1); }

    TextIndex& index() { return m_index; }
    TextReader* reader() { return m_reader.get(); }

signals:
    // A look over the pages is done: what wants reading is queued. False when the store or the
    // index could not be read (the log says why).
    void lookedOver(bool looked);

private:
    void takeLook();

    Database& m_db;
    const PagePaths& m_paths;
    QString m_languages;
    QStringList m_worker;
    TextIndex m_index;
    std::unique_ptr<TextReader> m_reader;
    QTimer m_later;
    QThread* m_look = nullptr;
    std::optional<Attempt<UnreadPages::Sweep>> m_found; // written by the look's thread
    bool m_again = false;
    std::atomic_bool m_stop = false;
};

} // namespace qmr
