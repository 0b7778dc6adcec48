#pragma once

class QWidget;

namespace qmr {

class Choosers;
class CommandTarget;
class NavigatorCallbacks;
class PageNotifier;
class PageOpener;
class Progress;
class Prompter;
class RunState;
class Session;
class ViewSettings;

// What every command and dialog works with. Start-up supplies the first six; the main window
// adds the target, itself as the navigator, and itself as the parent of dialogs. Outside a
// window (tests, batch runs) the last three may stay empty. The window's navigator owns the
// one context of a run; commands and dialogs hold it by reference, so that what is set later
// (the viewer's page opener) reaches every one of them whatever the order of their making.
struct CommandContext
{
    Session& session;
    RunState& state;
    Prompter& prompter;
    Choosers& choosers;
    Progress& progress;
    ViewSettings& view;
    CommandTarget* target = nullptr;
    NavigatorCallbacks* navigator = nullptr;
    QWidget* parent = nullptr;
    // How a page is opened for viewing; set by the window once the viewer is wired.
    PageOpener* pageOpener = nullptr;
    // Told when a page reaches a document, for the folder's notice; set once mail is wired.
    PageNotifier* pageNotifier = nullptr;
};

} // namespace qmr
