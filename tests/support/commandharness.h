#pragma once

#include <QtGlobal>
#include <deque>
#include <memory>

#include "core/progress.h"
#include "core/runstate.h"
#include "core/viewsettings.h"
#include "store/commandcontext.h"
#include "store/schema.h"
#include "store/session.h"
#include "tests/support/navrecorder.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"

namespace qmr::test {

// What a command needs around it in a test: a temporary home, scripted questions and
// choices, a navigator that records what it is told, a progress of the test's kind, and the
// session on the home's store once it is filled (openSession()). Commands and dialogs hold
// their context by reference, so each one handed out is kept for the harness's life.
template <class PrompterT = ScriptedPrompter, class ProgressT = SilentProgress>
struct CommandHarness
{
    TestHome home;
    PrompterT prompter;
    ScriptedChoosers choosers;
    NavRecorder nav;
    ProgressT progress;
    std::unique_ptr<Session> session;
    RunState state;
    std::unique_ptr<ViewSettings> view;
    std::deque<CommandContext> contexts;

    void openSession()
    {
        session = std::make_unique<Session>(home.home(), home.settings());
        StoreSchema::openDatabase(session->db(), home.home());
        view = std::make_unique<ViewSettings>(home.settings());
    }
    // The context of a command; `other` stands in for the harness's progress, and no
    // navigator is told anything when `withNavigator` is false.
    const CommandContext& context(Progress* other = nullptr, bool withNavigator = true)
    {
        return contexts.emplace_back(CommandContext{*session, state, prompter, choosers,
                                                    other ? *other : progress, *view, nullptr,
                                                    withNavigator ? &nav : nullptr});
    }
    Database& db() { return session->db(); }
};

} // namespace qmr::test
