#pragma once

#include <QRandomGenerator>
#include <deque>

#include "core/apphome.h"
#include "core/level.h"
#include "core/progress.h"
#include "core/settings.h"
#include "core/viewsettings.h"
#include "store/commandcontext.h"
#include "store/session.h"
#include "templates/drawertemplates.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"

namespace qmr::crash {

// Makes the home with the drawer templates and samples that the commands use.
void prepareHome(const AppHome& home);

// A home opened as the program opens it, and the store's writing commands run on it by
// number: command `step` does the same thing wherever and however often it runs, given the
// same store. New items and properties go through the item dialogs (new drawers with their
// templates), pages are renumbered one at a time and whole, samples become cabinets.
class CommandStore
{
public:
    CommandStore(const AppHome& home, quint32 seed);
    ~CommandStore();

    // Runs command `step`; "" when it went as a person would expect, else what went wrong.
    QString run(int step);
    Database& db() { return m_session.db(); }

private:
    // Commands hold their context by reference: each one handed out is kept here.
    const CommandContext& context();
    // A random existing item of the level (by id order), or -1 when there is none.
    qint32 pick(Level level, QRandomGenerator& rng);
    QString newItem(Level level, qint32 parentId, int step, QRandomGenerator& rng);
    QString properties(Level level, qint32 id, int step, QRandomGenerator& rng);
    void addPages(qint32 documentId, QRandomGenerator& rng);
    void repaginate(QRandomGenerator& rng);
    void sampleCabinet(QRandomGenerator& rng);
    // The moves of the drag and the clipboard, and files from outside becoming pages.
    void move(QRandomGenerator& rng);
    void pasteCutPages(QRandomGenerator& rng);
    void addFile(QRandomGenerator& rng);
    void importFiles(QRandomGenerator& rng);

    AppHome m_home;
    quint32 m_seed;
    Settings m_settings;
    Session m_session;
    DrawerTemplates m_templates;
    test::ScriptedPrompter m_prompter;
    test::ScriptedChoosers m_choosers;
    SilentProgress m_progress;
    ViewSettings m_view{m_settings};
    std::deque<CommandContext> m_contexts;
};

} // namespace qmr::crash
