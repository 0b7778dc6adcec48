#pragma once

#include <QCoreApplication>

#include <memory>

#include "core/commandtable.h"
#include "core/nodekey.h"
#include "store/commandcontext.h"

namespace qmr {

class ScanFlow;
class ScanSource;

// The scan entries of the main window: its two scan buttons and their File menu twins, the
// document's Scan New Page, and Scanner Settings. The scan source is made when first needed
// and kept for the run.
class ScanCommands
{
    Q_DECLARE_TR_FUNCTIONS(qmr::ScanCommands)

public:
    // `source` stands in for the system's devices (tests); by default SANE is used.
    explicit ScanCommands(const CommandContext& context, ScanSource* source = nullptr);
    // The context is held by reference: a temporary one would be gone before its use.
    ScanCommands(CommandContext&& context, ScanSource* source = nullptr) = delete;
    ~ScanCommands();

    void addTo(CommandTable& commands);

    // cmdScanDoc and cmdScanPic: the kind is written first, then the tree's node must be a
    // folder or a document.
    void scanDocument();
    void scanPicture();
    // mnuPopupDocumentScanPage: the document of the target rule; the kind stays as it is.
    void scanNewPage();
    // mnuScanSettings.
    void scanSettings();

    ScanSource& source();
    // The scan run last (its viewer, its counts), while the commands live.
    ScanFlow* lastFlow() const { return m_flow.get(); }

private:
    void scanFromTree(const QString& kind);
    void run(const NodeKey& key);

    const CommandContext& m_context;
    std::unique_ptr<ScanSource> m_ownSource;
    ScanSource* m_source = nullptr;
    std::unique_ptr<ScanFlow> m_flow;
};

} // namespace qmr
