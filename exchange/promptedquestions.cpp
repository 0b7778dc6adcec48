#include "exchange/promptedquestions.h"

#include "core/prompter.h"

namespace qmr {

bool PromptedQuestions::exportEmptyCabinet()
{
    return m_prompter.confirm(tr("There are no images in this cabinet.  Export an empty cabinet?"));
}

bool PromptedQuestions::importStructureOnly()
{
    return m_prompter.confirm(
        tr("There are no image files to import.  Import the file cabinet's structure?"));
}

bool PromptedQuestions::insertExportDisk(int number)
{
    return m_prompter.ask(tr("Please insert disk #%1").arg(number), Prompter::Buttons::OkCancel) ==
           Prompter::Answer::Ok;
}

bool PromptedQuestions::insertImportDisk(int number)
{
    return m_prompter.ask(tr("Please insert disk # %1").arg(number), Prompter::Buttons::OkCancel) ==
           Prompter::Answer::Ok;
}

} // namespace qmr
