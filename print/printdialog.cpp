#include "print/printdialog.h"

#include "core/prompter.h"
#include "store/session.h"
#include "ui_printdialog.h"

namespace qmr {

PrintDialog::PrintDialog(const CommandContext& context, PageLayouts& layouts, qint32 pageId,
                         const QStringList& printers, QWidget* parent)
    : PrintWindow(context, layouts, false, parent), m_ui(std::make_unique<Ui::PrintDialog>()),
      m_pageId(pageId)
{
    m_ui->setupUi(this);
    wire({m_ui->cboPrinter, m_ui->cmdSetup, m_ui->cmdPrint, m_ui->cmdCancel, m_ui->lblScale,
          m_ui->lblItem, m_ui->cmdPreview, m_ui->cmdSystemDialog},
         printers);
    Session& session = context.session;
    if (const std::optional<PageRow> page = session.pages().page(pageId)) {
        const QString document = session.items().item(Level::Document, page->documentId).name;
        m_title = document + tr(" page ") + QString::number(page->pageNumber);
        m_ui->lblItem->setText(
            tr("Page %1 of %2").arg(QString::number(page->pageNumber), document));
    }
}

PrintDialog::~PrintDialog() = default;

QVector<PageRow> PrintDialog::pagesToPrint()
{
    const std::optional<PageRow> page = m_context.session.pages().page(m_pageId);
    if (!page) {
        m_context.prompter.tell(tr("Nothing found to print."));
        return {};
    }
    return {*page};
}

} // namespace qmr
