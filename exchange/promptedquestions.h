#pragma once

#include <QCoreApplication>

#include "exchange/exchangequestions.h"

namespace qmr {

class Prompter;

// The questions of export and import, put to a person.
class PromptedQuestions : public ExchangeQuestions
{
    Q_DECLARE_TR_FUNCTIONS(qmr::PromptedQuestions)

public:
    explicit PromptedQuestions(Prompter& prompter) : m_prompter(prompter) {}

    bool exportEmptyCabinet() override;
    bool importStructureOnly() override;
    bool insertExportDisk(int number) override;
    bool insertImportDisk(int number) override;

private:
    Prompter& m_prompter;
};

} // namespace qmr
