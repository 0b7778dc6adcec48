#include "scan/scanoptionsdialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QVBoxLayout>
#include <cmath>

#include "ui_scanoptionsdialog.h"

namespace qmr {

namespace {

bool isNumber(const ScanOption& o)
{
    return o.type == ScanOption::Type::Int || o.type == ScanOption::Type::Fixed;
}

// Options the dialog leaves out: tables of values, which no field here can edit.
bool shown(const ScanOption& o)
{
    return o.type != ScanOption::Type::Group && !o.name.isEmpty() && o.count == 1;
}

QString numberText(double value, const ScanOption& o)
{
    const QString number = o.type == ScanOption::Type::Fixed
                               ? QLocale().toString(value, 'g', 6)
                               : QLocale().toString(qint64(std::llround(value)));
    return o.unit.isEmpty() ? number : number + QLatin1Char(' ') + o.unit;
}

} // namespace

ScanOptionsDialog::ScanOptionsDialog(const QString& deviceLabel, ScanSource& source,
                                     QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::ScanOptionsDialog>()), m_source(source)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    m_ui->lblDevice->setText(tr("Options of %1").arg(deviceLabel));
    m_ui->lblFailure->hide();
    m_ui->lblFailure->setStyleSheet(QStringLiteral("color: #b00020;"));
    connect(m_ui->cmdScan, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_ui->chkAdvanced, &QCheckBox::toggled, this, [this] { refresh(); });
    connect(&m_source, &ScanSource::optionsChanged, this, &ScanOptionsDialog::answered);
}

ScanOptionsDialog::~ScanOptionsDialog() = default;

void ScanOptionsDialog::setOptions(const QVector<ScanOption>& options)
{
    const bool rebuild = !sameShape(options);
    m_options = options;
    if (rebuild)
        build();
    refresh();
}

bool ScanOptionsDialog::sameShape(const QVector<ScanOption>& options) const
{
    if (options.size() != m_options.size() || m_controls.isEmpty())
        return false;
    for (int i = 0; i < options.size(); ++i) {
        const ScanOption& a = options[i];
        const ScanOption& b = m_options[i];
        if (a.name != b.name || a.type != b.type || a.constraint != b.constraint ||
            a.strings != b.strings || a.words != b.words || a.minimum != b.minimum ||
            a.maximum != b.maximum || a.quant != b.quant || a.count != b.count)
            return false;
    }
    return true;
}

void ScanOptionsDialog::build()
{
    QString focused;
    if (QWidget* f = focusWidget(); f && m_controls.key(f, QString()).size())
        focused = m_controls.key(f);
    auto* groups = static_cast<QVBoxLayout*>(m_ui->wgtOptions->layout());
    while (QLayoutItem* item = groups->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    m_controls.clear();
    m_rows.clear();
    m_groups.clear();

    QGroupBox* box = nullptr;
    QFormLayout* form = nullptr;
    QString groupTitle;
    for (const ScanOption& o : m_options) {
        if (o.type == ScanOption::Type::Group) {
            groupTitle = o.title;
            box = nullptr;
            continue;
        }
        if (!shown(o))
            continue;
        if (!box) {
            box =
                new QGroupBox(groupTitle.isEmpty() ? tr("Options") : groupTitle, m_ui->wgtOptions);
            form = new QFormLayout(box);
            form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
            groups->addWidget(box);
        }
        QWidget* control = makeControl(o);
        control->setObjectName(o.name);
        control->setToolTip(o.description);
        m_controls.insert(o.name, control);
        m_groups.insert(o.name, box);
        if (o.type == ScanOption::Type::Bool || o.type == ScanOption::Type::Button) {
            form->addRow(control);
            m_rows.insert(o.name, control);
        } else {
            auto* label = new QLabel(o.title + QLatin1Char(':'), box);
            label->setObjectName(QStringLiteral("lbl_") + o.name);
            label->setBuddy(control);
            label->setToolTip(o.description);
            form->addRow(label, control);
            m_rows.insert(o.name, label);
        }
    }
    groups->addStretch(1);
    // Wide enough for the widest row, so that only the length scrolls.
    const int frame = 2 * m_ui->scrOptions->frameWidth();
    const int wanted = m_ui->wgtOptions->sizeHint().width() +
                       m_ui->scrOptions->verticalScrollBar()->sizeHint().width() + frame;
    m_ui->scrOptions->setMinimumWidth(qBound(440, wanted, 900));
    if (QWidget* again = m_controls.value(focused))
        again->setFocus();
}

QWidget* ScanOptionsDialog::makeControl(const ScanOption& o)
{
    const QString name = o.name;
    QWidget* parent = m_ui->wgtOptions;
    if (o.type == ScanOption::Type::Bool) {
        auto* box = new QCheckBox(o.title, parent);
        connect(box, &QCheckBox::toggled, this, [this, name](bool on) { change(name, on); });
        return box;
    }
    if (o.type == ScanOption::Type::Button) {
        auto* button = new QPushButton(o.title, parent);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, name] { change(name, QVariant()); });
        return button;
    }
    if (o.constraint == ScanOption::Constraint::StringList ||
        o.constraint == ScanOption::Constraint::WordList) {
        auto* box = new QComboBox(parent);
        if (o.constraint == ScanOption::Constraint::StringList)
            for (const QString& s : o.strings)
                box->addItem(s, s);
        else
            for (double w : o.words)
                box->addItem(numberText(w, o), w);
        connect(box, &QComboBox::activated, this,
                [this, name, box](int index) { change(name, box->itemData(index)); });
        return box;
    }
    if (o.type == ScanOption::Type::String) {
        auto* edit = new QLineEdit(parent);
        connect(edit, &QLineEdit::editingFinished, this,
                [this, name, edit] { change(name, edit->text()); });
        return edit;
    }
    const bool ranged = o.constraint == ScanOption::Constraint::Range;
    const QString suffix = o.unit.isEmpty() ? QString() : QLatin1Char(' ') + o.unit;
    if (o.type == ScanOption::Type::Int) {
        auto* spin = new QSpinBox(parent);
        spin->setRange(ranged ? int(o.minimum) : std::numeric_limits<int>::min(),
                       ranged ? int(o.maximum) : std::numeric_limits<int>::max());
        spin->setSingleStep(ranged && o.quant >= 1 ? int(o.quant) : 1);
        spin->setSuffix(suffix);
        spin->setKeyboardTracking(false);
        connect(spin, &QSpinBox::valueChanged, this,
                [this, name](int value) { change(name, value); });
        return spin;
    }
    auto* spin = new QDoubleSpinBox(parent);
    spin->setDecimals(ranged && o.quant >= 1 ? 0 : 2);
    spin->setRange(ranged ? o.minimum : -32768.0, ranged ? o.maximum : 32767.0);
    spin->setSingleStep(ranged && o.quant > 0 ? o.quant : 1.0);
    spin->setSuffix(suffix);
    spin->setKeyboardTracking(false);
    connect(spin, &QDoubleSpinBox::valueChanged, this,
            [this, name](double value) { change(name, value); });
    return spin;
}

void ScanOptionsDialog::showValue(QWidget* control, const ScanOption& o)
{
    if (!o.value.isValid())
        return;
    if (auto* box = qobject_cast<QCheckBox*>(control)) {
        box->setChecked(o.value.toBool());
    } else if (auto* combo = qobject_cast<QComboBox*>(control)) {
        int index = -1;
        for (int i = 0; i < combo->count() && index < 0; ++i)
            if (isNumber(o)
                    ? qFuzzyCompare(combo->itemData(i).toDouble() + 1, o.value.toDouble() + 1)
                    : combo->itemData(i).toString() == o.value.toString())
                index = i;
        combo->setCurrentIndex(index);
    } else if (auto* edit = qobject_cast<QLineEdit*>(control)) {
        if (!edit->hasFocus())
            edit->setText(o.value.toString());
    } else if (auto* spin = qobject_cast<QSpinBox*>(control)) {
        spin->setValue(o.value.toInt());
    } else if (auto* dspin = qobject_cast<QDoubleSpinBox*>(control)) {
        dspin->setValue(o.value.toDouble());
    }
}

void ScanOptionsDialog::refresh()
{
    m_updating = true;
    const bool advanced = m_ui->chkAdvanced->isChecked();
    QHash<QGroupBox*, bool> groupShown;
    for (const ScanOption& o : m_options) {
        QWidget* control = m_controls.value(o.name);
        if (!control || !shown(o))
            continue;
        showValue(control, o);
        const bool visible = advanced || !o.advanced;
        control->setEnabled(o.editable());
        control->setVisible(visible);
        if (QWidget* row = m_rows.value(o.name); row && row != control) {
            row->setVisible(visible);
            row->setEnabled(o.editable());
        }
        QGroupBox* box = m_groups.value(o.name);
        groupShown[box] = groupShown.value(box) || visible;
    }
    for (auto it = groupShown.cbegin(); it != groupShown.cend(); ++it)
        it.key()->setVisible(it.value());
    m_updating = false;
}

void ScanOptionsDialog::change(const QString& name, const QVariant& value)
{
    if (m_updating)
        return;
    m_source.setOption(name, value);
}

void ScanOptionsDialog::answered(const QVector<ScanOption>& options, const QString& failure)
{
    if (!options.isEmpty())
        setOptions(options);
    m_ui->lblFailure->setVisible(!failure.isEmpty());
    if (!failure.isEmpty())
        m_ui->lblFailure->setText(tr("The device did not take the change: %1.").arg(failure));
    emit optionsUpdated();
}

} // namespace qmr
