#include "find/finddialog.h"

#include <QEvent>
#include <QLocale>
#include <QShortcut>
#include <QTimer>
#include <cmath>
#include <limits>

#include "core/findrecord.h"
#include "core/foundresults.h"
#include "core/localenumber.h"
#include "core/prompter.h"
#include "core/runstate.h"
#include "find/findsearch.h"
#include "find/locationcombos.h"
#include "store/commandguard.h"
#include "store/session.h"
#include "ui_finddialog.h"

namespace qmr {

namespace {

constexpr int kPollMilliseconds = 500;
constexpr int kKeywordsTab = 0;
constexpr int kAdvancedTab = 2;

// The widest dates the pickers offer.
const QDate kFirstDate(1601, 1, 1);
const QDate kLastDate(9999, 12, 31);

} // namespace

FindDialog::FindDialog(const CommandContext& context, FoundResults* results, QWidget* parent)
    : QDialog(parent), m_context(context), m_results(results),
      m_ui(std::make_unique<Ui::FindDialog>()), m_timer(new QTimer(this))
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    // The two option buttons are one control array by their names.
    m_ui->optKeywords0->setObjectName(QStringLiteral("optKeywords(0)"));
    m_ui->optKeywords1->setObjectName(QStringLiteral("optKeywords(1)"));
    m_ui->lblDebug->hide();
    m_combos = std::make_unique<LocationCombos>(context.session, *m_ui->cboCabinet,
                                                *m_ui->cboDrawer, *m_ui->cboFolder);
    for (QDateEdit* picker : {m_ui->dtScanFrom, m_ui->dtScanThru, m_ui->dtDocFrom, m_ui->dtDocThru})
        picker->setDateRange(kFirstDate, kLastDate);

    connect(m_ui->cmdFind, &QPushButton::clicked, this, &FindDialog::find);
    connect(m_ui->cmdReset, &QPushButton::clicked, this, &FindDialog::reset);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_ui->dtScanFrom, &QDateEdit::dateChanged, this,
            [this](const QDate& from) { followFrom(from, m_ui->dtScanThru, &m_scanThruFollowed); });
    connect(m_ui->dtDocFrom, &QDateEdit::dateChanged, this,
            [this](const QDate& from) { followFrom(from, m_ui->dtDocThru, &m_docThruFollowed); });
    m_ui->txtAmtFrom->installEventFilter(this);
    connect(m_timer, &QTimer::timeout, this, &FindDialog::pollCombos);

    // Ctrl+PageUp and Ctrl+PageDown go round the tabs, whichever control has the focus.
    auto* previous = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_PageUp), this);
    connect(previous, &QShortcut::activated, this, [this] { selectTab(-1); });
    auto* next = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_PageDown), this);
    connect(next, &QShortcut::activated, this, [this] { selectTab(1); });

    loadForm();
}

FindDialog::~FindDialog() = default;

void FindDialog::loadForm()
{
    m_loading = true;
    m_timer->stop();
    if (m_context.parent)
        setWindowIcon(m_context.parent->window()->windowIcon());
    m_ui->lblScanDate->setText(tr("Scanned date:"));
    m_ui->tabFind->setCurrentIndex(kKeywordsTab);
    // Typing starts in the keywords, not on the tab bar that leads the tab order.
    m_ui->txtKeywords->setFocus();

    const FindRecord& record = m_context.state.findRecord();
    m_ui->txtKeywords->setText(record.keywords);
    m_ui->txtPageWords->setText(record.pageWords);
    m_ui->optKeywords0->setChecked(record.matchAny != 0);
    m_ui->optKeywords1->setChecked(record.matchAll != 0);

    guarded(m_context.prompter, [&] {
        m_combos->reset();
        LocationCombos::selectText(*m_ui->cboCabinet, record.cabinetName);
        m_combos->syncLocationCombos();
        LocationCombos::selectText(*m_ui->cboDrawer, record.drawerName);
        m_combos->syncLocationCombos();
        LocationCombos::selectText(*m_ui->cboFolder, record.folderName);
        m_combos->syncLocationCombos();
    });
    // With no cabinet at all there is nothing to search.
    m_ui->cmdFind->setEnabled(m_combos->hasCabinets());

    m_ui->dtScanFrom->setDate(record.scanFrom);
    m_ui->dtScanThru->setDate(record.scanThru);
    m_ui->dtDocFrom->setDate(record.docFrom);
    m_ui->dtDocThru->setDate(record.docThru);
    m_scanThruFollowed = m_docThruFollowed = QDate();
    m_ui->txtFileSizeFrom->setText(QString::number(record.fileSizeFrom));
    m_ui->txtFileSizeThru->setText(QString::number(record.fileSizeThru));
    const QLocale locale;
    m_ui->txtAmtFrom->setText(locale.toString(record.amountFrom, 'f', 2));
    m_ui->txtAmtThru->setText(locale.toString(record.amountThru, 'f', 2));

    m_timer->start(kPollMilliseconds);
    m_loading = false;
}

void FindDialog::pollCombos()
{
    // No poll while one runs (a message waits in its own event loop); after a store failure
    // the combos stop following each other rather than repeat the message twice a second.
    const bool polling = m_timer->isActive();
    m_timer->stop();
    const bool ok = guarded(m_context.prompter, [this] { m_combos->syncLocationCombos(); });
    m_ui->lblDebug->setText(m_combos->idsText());
    if (polling && ok)
        m_timer->start();
}

void FindDialog::followFrom(const QDate& from, QDateEdit* thru, QDate* followed)
{
    if (m_loading)
        return;
    // A Thru date that the user has not set yet (the default, or what this helper put there)
    // follows, so that stepping through a From date does not leave Thru behind at its first
    // step.
    const QDate defaultThru = m_context.state.findRecord().defaultThru;
    if (thru->date() == defaultThru || (followed->isValid() && thru->date() == *followed)) {
        *followed = from;
        thru->setDate(from);
    }
}

QString FindDialog::zeroAmountText() const
{
    return QLocale().toString(0.0, 'f', 2);
}

bool FindDialog::eventFilter(QObject* watched, QEvent* event)
{
    // Leaving a From amount with no Thru amount searches for that exact amount.
    if (watched == m_ui->txtAmtFrom && event->type() == QEvent::FocusOut) {
        const QString from = m_ui->txtAmtFrom->text();
        const QString thru = m_ui->txtAmtThru->text().trimmed();
        if (from != zeroAmountText() && (thru == zeroAmountText() || thru.isEmpty()))
            m_ui->txtAmtThru->setText(from);
    }
    return QDialog::eventFilter(watched, event);
}

void FindDialog::selectTab(int step)
{
    const int count = m_ui->tabFind->count();
    m_ui->tabFind->setCurrentIndex((m_ui->tabFind->currentIndex() + step + count) % count);
}

void FindDialog::reset()
{
    if (m_context.prompter.ask(tr("Reset find parameters?"), Prompter::Buttons::YesNo) !=
        Prompter::Answer::Yes)
        return;
    m_context.state.findRecord().initFindDefaults();
    loadForm();
}

void FindDialog::showNumberError(QLineEdit* box, const QString& message)
{
    m_context.prompter.tell(message);
    m_ui->tabFind->setCurrentIndex(kAdvancedTab);
    box->setFocus();
    box->selectAll();
}

bool FindDialog::readNumbers(FindRecord& record)
{
    // An empty box means 0; anything else must be a number, never silently another value.
    const auto read = [](const QLineEdit* box) -> std::optional<double> {
        if (box->text().trimmed().isEmpty())
            return 0.0;
        return LocaleNumber().read(box->text());
    };
    const QString sizeMessage = tr("The file size must be a number of bytes.");
    qint32* sizes[] = {&record.fileSizeFrom, &record.fileSizeThru};
    QLineEdit* sizeBoxes[] = {m_ui->txtFileSizeFrom, m_ui->txtFileSizeThru};
    for (int i = 0; i < 2; ++i) {
        const std::optional<double> value = read(sizeBoxes[i]);
        const double rounded = value ? std::round(*value) : 0;
        if (!value || rounded < std::numeric_limits<qint32>::min() ||
            rounded > std::numeric_limits<qint32>::max()) {
            showNumberError(sizeBoxes[i], sizeMessage);
            return false;
        }
        *sizes[i] = static_cast<qint32>(rounded);
    }
    double* amounts[] = {&record.amountFrom, &record.amountThru};
    QLineEdit* amountBoxes[] = {m_ui->txtAmtFrom, m_ui->txtAmtThru};
    for (int i = 0; i < 2; ++i) {
        const std::optional<double> value = read(amountBoxes[i]);
        if (!value) {
            showNumberError(amountBoxes[i], tr("The amount must be a number."));
            return false;
        }
        *amounts[i] = *value;
    }
    return true;
}

void FindDialog::find()
{
    m_ui->txtKeywords->setText(m_ui->txtKeywords->text().trimmed());
    m_ui->txtPageWords->setText(m_ui->txtPageWords->text().trimmed());
    // Words on the pages are something to look for: the question is for a search by ranges.
    if (m_ui->txtKeywords->text().isEmpty() && m_ui->txtPageWords->text().isEmpty() &&
        m_context.prompter.ask(tr("No keywords entered.  Search without keywords?"),
                               Prompter::Buttons::YesNoCancel) != Prompter::Answer::Yes) {
        m_ui->tabFind->setCurrentIndex(kKeywordsTab);
        m_ui->txtKeywords->setFocus();
        return;
    }
    FindRecord record = m_context.state.findRecord();
    if (!readNumbers(record))
        return;
    record.keywords = m_ui->txtKeywords->text();
    record.pageWords = m_ui->txtPageWords->text();
    record.matchAny = m_ui->optKeywords0->isChecked() ? 1 : 0;
    record.matchAll = m_ui->optKeywords1->isChecked() ? 1 : 0;
    record.cabinetName = m_ui->cboCabinet->currentText();
    record.drawerName = m_ui->cboDrawer->currentText();
    record.folderName = m_ui->cboFolder->currentText();
    record.scanFrom = m_ui->dtScanFrom->date();
    record.scanThru = m_ui->dtScanThru->date();
    record.docFrom = m_ui->dtDocFrom->date();
    record.docThru = m_ui->dtDocThru->date();
    m_context.state.findRecord() = record;

    m_timer->stop();
    runFind(record);
    accept();
}

void FindDialog::runFind(const FindRecord& record)
{
    guarded(m_context.prompter, [&] {
        if (m_results)
            m_results->clear();
        // The ids are what the polls have settled; a combo changed since is not seen yet.
        const FindOutcome outcome = FindSearch(m_context.session, m_context.state.foundSet())
                                        .run(record, m_combos->cabinetId(), m_combos->folderId());
        if (outcome.foundCount == 0) {
            m_context.prompter.tell(tr("Nothing found."));
            return;
        }
        if (m_results)
            m_results->show(outcome.documents);
    });
}

} // namespace qmr
