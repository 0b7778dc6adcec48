#include "print/printdocumentdialog.h"

#include <QIntValidator>

#include "core/prompter.h"
#include "store/session.h"
#include "ui_printdocumentdialog.h"

namespace qmr {

PrintDocumentDialog::PrintDocumentDialog(const CommandContext& context, PageLayouts& layouts,
                                         qint32 documentId, const QStringList& printers,
                                         QWidget* parent)
    : PrintWindow(context, layouts, true, parent),
      m_ui(std::make_unique<Ui::PrintDocumentDialog>()), m_documentId(documentId)
{
    m_ui->setupUi(this);
    wire({m_ui->cboPrinter, m_ui->cmdSetup, m_ui->cmdPrint, m_ui->cmdCancel, m_ui->lblScale,
          m_ui->lblItem, m_ui->cmdPreview, m_ui->cmdSystemDialog},
         printers);
    for (QLineEdit* edit : {m_ui->txtFrom, m_ui->txtTo})
        edit->setValidator(new QIntValidator(edit));
    Session& session = context.session;
    m_name = session.items().item(Level::Document, documentId).name;
    m_ui->lblItem->setText(tr("Document: ") + m_name);
    m_ui->txtFrom->setText(QString::number(session.pages().lowestNumber(documentId)));
    m_ui->txtTo->setText(QString::number(session.pages().highestNumber(documentId)));
}

PrintDocumentDialog::~PrintDocumentDialog() = default;

QVector<PageRow> PrintDocumentDialog::pagesToPrint()
{
    bool fromIsNumber = false;
    bool toIsNumber = false;
    const int from = m_ui->txtFrom->text().trimmed().toInt(&fromIsNumber);
    const int to = m_ui->txtTo->text().trimmed().toInt(&toIsNumber);
    const QVector<PageRow> pages =
        fromIsNumber && toIsNumber ? m_context.session.pages().pagesInRange(m_documentId, from, to)
                                   : QVector<PageRow>();
    if (pages.isEmpty())
        m_context.prompter.tell(tr("Nothing found to print."));
    return pages;
}

} // namespace qmr
