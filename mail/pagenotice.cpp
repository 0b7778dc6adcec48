#include "mail/pagenotice.h"

#include "mail/mailsender.h"
#include "mail/mailsettings.h"
#include "store/commandcontext.h"
#include "store/session.h"
#include "store/storeerror.h"

namespace qmr {

std::optional<PageNotice::Notice> PageNotice::compose(Session& session, qint32 pageId)
{
    ItemStore& items = session.items();
    const qint32 documentId = items.documentOfPage(pageId);
    const qint32 folderId = items.folderOfDocument(documentId);
    const std::optional<ItemFields> folder = items.fields(Level::Folder, folderId);
    if (!folder)
        return std::nullopt;
    Notice notice;
    notice.address = folder->email.trimmed();
    if (notice.address.isEmpty())
        return std::nullopt;
    notice.folder = folder->name;

    const qint32 drawerId = items.drawerOfFolder(folderId);
    const qint32 cabinetId = items.cabinetOfDrawer(drawerId);
    const ItemRow cabinet = items.item(Level::Cabinet, cabinetId);
    const ItemRow drawer = items.item(Level::Drawer, drawerId);
    const ItemRow document = items.item(Level::Document, documentId);
    if (cabinet.id < 0 || drawer.id < 0 || document.id < 0)
        return std::nullopt;
    const std::optional<PageRow> page = session.pages().page(pageId);
    if (!page)
        return std::nullopt;

    const QString crlf = QStringLiteral("\r\n");
    notice.subject = tr("Quillmere: new page added");
    notice.body = tr(" Cabinet: ") + cabinet.name + crlf + tr("  Drawer: ") + drawer.name + crlf +
                  tr("  Folder: ") + folder->name + crlf + tr("Document: ") + document.name + crlf +
                  crlf;
    if (page->shortcut)
        notice.body += tr("New file added: ") + page->filename;
    else
        notice.body += tr("New page scanned.  Page # ") + QString::number(page->pageNumber);
    return notice;
}

void PageNotice::sendPageNotice(const CommandContext& context, qint32 pageId)
{
    if (MailSettings::read(context.session.settings()).system == MailSystem::None)
        return;
    std::optional<Notice> notice;
    try {
        notice = compose(context.session, pageId);
    } catch (const StoreError&) {
        return;
    }
    if (!notice)
        return;
    const MailSettings settings = MailSettings::forSending(context.session.settings());
    MailSender(context.prompter, context.parent)
        .recipientField(tr("the Email of folder '%1'").arg(notice->folder))
        .logRefusals(QStringLiteral("No notice of page %1.").arg(pageId))
        .send(settings, notice->address, notice->subject, notice->body, QString());
}

} // namespace qmr
