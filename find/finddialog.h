#pragma once

#include <QDate>
#include <QDialog>
#include <memory>

#include "store/commandcontext.h"

class QDateEdit;
class QLineEdit;
class QTimer;

namespace Ui {
class FindDialog;
}

namespace qmr {

class FoundResults;
class LocationCombos;
struct FindRecord;

// frmFind: the criteria of a search on three tabs, filled from the criteria of the last
// search. Find searches, shows the result through `results` and closes the dialog.
class FindDialog : public QDialog
{
    Q_OBJECT
public:
    // `results` may be null: the search then only counts.
    FindDialog(const CommandContext& context, FoundResults* results, QWidget* parent = nullptr);
    // The context is held by reference: a temporary one would be gone before its use.
    FindDialog(CommandContext&& context, FoundResults* results, QWidget* parent = nullptr) = delete;
    ~FindDialog() override;

    // The form load: every control from the session's find criteria.
    void loadForm();
    // cmdFind, cmdReset: what the buttons do.
    void find();
    void reset();
    // One poll of the location combos, as the timer makes it every half second.
    void pollCombos();
    LocationCombos& combos() { return *m_combos; }
    QTimer& timer() { return *m_timer; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Reads the number boxes into `record`; false, after saying why, when one holds no number.
    bool readNumbers(FindRecord& record);
    void showNumberError(QLineEdit* box, const QString& message);
    void runFind(const FindRecord& record);
    // The From-date helper: a Thru date not yet set by the user follows its From date.
    void followFrom(const QDate& from, QDateEdit* thru, QDate* followed);
    void selectTab(int step);
    QString zeroAmountText() const;

    const CommandContext& m_context;
    FoundResults* m_results;
    std::unique_ptr<Ui::FindDialog> m_ui;
    std::unique_ptr<LocationCombos> m_combos;
    QTimer* m_timer;
    bool m_loading = false;
    // The dates the helper last gave the Thru pickers; a picker still showing it has not been
    // set by the user.
    QDate m_scanThruFollowed;
    QDate m_docThruFollowed;
};

} // namespace qmr
