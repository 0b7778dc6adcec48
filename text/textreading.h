#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <memory>

#include "core/attempt.h"
#include "core/pagenotifier.h"
#include "store/textindex.h"
#include "text/textreader.h"

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
    // Looks over the pages again.
    void refresh();
    // The pages are read in these languages from the next page on; pages read before keep
    // their text.
    void setLanguages(const QString& languages);
    const QString& languages() const { return m_languages; }
    void pageAdded(qint32 pageId) override;

    TextIndex& index() { return m_index; }
    TextReader* reader() { return m_reader.get(); }

private:
    Database& m_db;
    const PagePaths& m_paths;
    QString m_languages;
    QStringList m_worker;
    TextIndex m_index;
    std::unique_ptr<TextReader> m_reader;
    QTimer m_later;
};

} // namespace qmr
