#pragma once

#include <QObject>

#include "core/commandtable.h"
#include "store/commandcontext.h"

namespace qmr {

// The page text entries of the main window's menus: File > Page Text Settings and the
// document's Save as Searchable PDF.
class TextCommands : public QObject
{
    Q_OBJECT
public:
    explicit TextCommands(const CommandContext& context) : m_context(context) {}
    // The context is held by reference: a temporary one would be gone before its use.
    TextCommands(CommandContext&& context) = delete;

    void addTo(CommandTable& commands);
    // Shows the settings; a new choice is saved and said.
    void textSettings();

signals:
    // The languages the pages are read in changed ("eng+deu"): a reading under way takes them.
    void languagesChosen(const QString& languages);

private:
    const CommandContext& m_context;
};

} // namespace qmr
