#include "text/searchablepdfcommand.h"

#include <QCursor>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScopeGuard>
#include <QStandardPaths>

#include "core/choosers.h"
#include "core/commandtarget.h"
#include "core/progress.h"
#include "core/prompter.h"
#include "core/settingkeys.h"
#include "core/settings.h"
#include "store/commandguard.h"
#include "store/itemstore.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "store/session.h"
#include "store/textindex.h"
#include "text/searchablepdf.h"

namespace qmr {

namespace {

// Where the chooser opens: the directory last saved to while it is there, else the user's
// documents.
QString startDirectory(Settings& settings)
{
    const QString last = settings.get(keys::SearchablePdfPath);
    if (!last.isEmpty() && QFileInfo(last).isDir())
        return last;
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return documents.isEmpty() || !QFileInfo(documents).isDir() ? QDir::homePath() : documents;
}

// The page's words when the index holds them for the picture as it is now; nothing for a
// page not read yet or read from a picture since replaced.
std::optional<QList<TextIndex::Word>> wordsOf(TextIndex& index, qint32 pageId, const QString& path)
{
    const std::optional<TextIndex::Entry> entry = index.entry(pageId);
    if (!entry || entry->state == TextIndex::State::Interrupted ||
        entry->stamp != TextIndex::Stamp::of(path))
        return std::nullopt;
    // A picture found unreadable has been read: it has no words to give.
    return entry->state == TextIndex::State::Read ? index.wordsOf(pageId)
                                                  : QList<TextIndex::Word>{};
}

} // namespace

void SearchablePdfCommand::addTo(const CommandContext& context, CommandTable& table)
{
    table.insert(entry(), [&context] { saveTarget(context); });
}

void SearchablePdfCommand::saveTarget(const CommandContext& context)
{
    if (!context.target)
        return;
    const qint32 documentId = context.target->targetId(Level::Document);
    if (documentId >= 0)
        saveDocument(context, documentId);
    context.target->restoreFocus();
}

QString SearchablePdfCommand::fileNameFor(const QString& documentName)
{
    QString name;
    for (const QChar c : documentName.trimmed())
        name += c.isPrint() && !QStringLiteral("/\\:*?\"<>|").contains(c) ? c : QLatin1Char('_');
    if (name.isEmpty() || name.startsWith(QLatin1Char('.')))
        name.prepend(tr("Document"));
    return name + QStringLiteral(".pdf");
}

void SearchablePdfCommand::saveDocument(const CommandContext& context, qint32 documentId)
{
    Session& session = context.session;
    Prompter& prompter = context.prompter;
    guarded(prompter, [&] {
        const QString name = session.items().item(Level::Document, documentId).name;
        // A shortcut's file is not a picture the store keeps: it has no place in the PDF.
        QList<SearchablePdf::Page> pages;
        QList<qint32> pageIds;
        for (const PageRow& row : session.pages().pages(documentId)) {
            if (row.shortcut)
                continue;
            pages << SearchablePdf::Page{
                session.paths().pagePath(row.id, row.filename), row.pageNumber, {}};
            pageIds << row.id;
        }
        if (pages.isEmpty()) {
            prompter.tell(tr("The document '%1' has no scanned pages to save as a PDF.").arg(name));
            return;
        }
        Settings& settings = session.settings();
        std::optional<QString> chosen = context.choosers.saveFile(
            {tr("Save as Searchable PDF"),
             startDirectory(settings) + QLatin1Char('/') + fileNameFor(name),
             {tr("PDF files (*.pdf)")},
             0,
             QStringLiteral("pdf"),
             true});
        if (!chosen || chosen->isEmpty())
            return;
        QString path = *chosen;
        if (QFileInfo(path).suffix().isEmpty())
            path += QStringLiteral(".pdf");

        TextIndex index(session.home().path());
        index.openAsItIs();
        int unread = 0;
        for (int i = 0; i < pages.size(); ++i) {
            if (auto words = wordsOf(index, pageIds.at(i), pages.at(i).path))
                pages[i].words = std::move(*words);
            else
                ++unread;
        }

        Progress& progress = context.progress;
        progress.start(tr("Save as Searchable PDF"), 1, int(pages.size()));
        progress.showCancel();
        const Attempt<SearchablePdf::Outcome> written = [&] {
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
            const auto done = qScopeGuard([&progress] {
                QGuiApplication::restoreOverrideCursor();
                progress.end();
            });
            return SearchablePdf::write(pages, path, name, progress);
        }();
        if (!written) {
            prompter.tell(written.why());
            return;
        }
        if (written.value() == SearchablePdf::Outcome::Cancelled)
            return;
        settings.set(keys::SearchablePdfPath, QFileInfo(path).absolutePath());
        if (unread == 1)
            prompter.tell(tr("1 page has not been read yet; the PDF holds its picture without "
                             "text."));
        else if (unread > 1)
            prompter.tell(tr("%1 pages have not been read yet; the PDF holds their pictures "
                             "without text.")
                              .arg(unread));
    });
}

} // namespace qmr
