#pragma once

#include <QCoreApplication>
#include <QStringList>
#include <QTextStream>

namespace qmr {

class Session;

// The window-less commands of the pages' text: --find prints the documents whose pages hold
// the words, --read-text reads every page whose text is not read yet.
class TextBatch
{
    Q_DECLARE_TR_FUNCTIONS(qmr::TextBatch)

public:
    TextBatch(Session& session, QTextStream& out, QTextStream& err)
        : m_session(session), m_out(out), m_err(err)
    {
    }
    // One line a document, "Cabinet/Drawer/Folder/Document<tab>1, 3" with the numbers of its
    // pages that hold the words; 0 when something was found, 1 when nothing.
    int find(const QString& words);
    // `worker`: the program and arguments that start a worker, without the languages.
    int readText(const QString& languages, const QStringList& worker);

private:
    Session& m_session;
    QTextStream& m_out;
    QTextStream& m_err;
};

} // namespace qmr
