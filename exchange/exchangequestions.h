#pragma once

namespace qmr {

// The questions an export or import may have to ask on its way. In the dialogs a person
// answers them; on the command line fixed rules do, since nobody is there to ask.
class ExchangeQuestions
{
public:
    virtual ~ExchangeQuestions() = default;
    // The cabinet has no pages: export its drawers, folders and documents all the same?
    virtual bool exportEmptyCabinet() = 0;
    // The exchange directory holds no files: bring in its drawers, folders and documents?
    virtual bool importStructureOnly() = 0;
    // The export's target is full: go on with disk `number` at the same path?
    virtual bool insertExportDisk(int number) = 0;
    // The import goes on with disk `number` at the same path?
    virtual bool insertImportDisk(int number) = 0;
};

} // namespace qmr
