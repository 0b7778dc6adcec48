#include "scan/scancommands.h"

#include "core/commandtarget.h"
#include "core/prompter.h"
#include "core/settings.h"
#include "scan/sanesource.h"
#include "scan/scanflow.h"
#include "scan/scansettingsdialog.h"
#include "store/session.h"

namespace qmr {

ScanCommands::ScanCommands(const CommandContext& context, ScanSource* source)
    : m_context(context), m_source(source)
{
}

ScanCommands::~ScanCommands() = default;

ScanSource& ScanCommands::source()
{
    if (!m_source) {
        m_ownSource = std::make_unique<SaneSource>();
        m_source = m_ownSource.get();
    }
    return *m_source;
}

void ScanCommands::addTo(CommandTable& commands)
{
    commands.insert(QStringLiteral("cmdScanDoc"), [this] { scanDocument(); });
    commands.insert(QStringLiteral("cmdScanPic"), [this] { scanPicture(); });
    commands.insert(QStringLiteral("mnuFileScanPage"), [this] { scanDocument(); });
    commands.insert(QStringLiteral("mnuFileScanPicture"), [this] { scanPicture(); });
    commands.insert(QStringLiteral("mnuPopupDocumentScanPage"), [this] { scanNewPage(); });
    commands.insert(QStringLiteral("mnuScanSettings"), [this] { scanSettings(); });
}

void ScanCommands::scanDocument()
{
    scanFromTree(QStringLiteral("document"));
}

void ScanCommands::scanPicture()
{
    scanFromTree(QStringLiteral("picture"));
}

void ScanCommands::scanFromTree(const QString& kind)
{
    if (m_flow && m_flow->isRunning())
        return;
    m_context.session.settings().set(keys::ImageType, kind);
    const NodeKey key = m_context.target ? m_context.target->view().treeSelectedKey() : NodeKey();
    if (key.prefix() != QLatin1String("FLD") && key.prefix() != QLatin1String("DOC")) {
        m_context.prompter.tell(tr("Please click on a folder or document to scan to."));
        return;
    }
    run(key);
}

void ScanCommands::scanNewPage()
{
    if ((m_flow && m_flow->isRunning()) || !m_context.target)
        return;
    const qint32 id = m_context.target->targetId(Level::Document);
    if (id < 0)
        return;
    run(NodeKey::of(Level::Document, id));
}

void ScanCommands::run(const NodeKey& key)
{
    m_flow = std::make_unique<ScanFlow>(m_context, source());
    m_flow->scanToViewer(key);
}

void ScanCommands::scanSettings()
{
    // The settings of a scan under way stay as they were when it began.
    if (m_flow && m_flow->isRunning())
        return;
    ScanSettingsDialog dialog(m_context.session.settings(), source(), m_context.parent);
    dialog.exec();
}

} // namespace qmr
