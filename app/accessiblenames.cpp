#include "app/accessiblenames.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextEdit>

namespace qmr {

namespace {

// A name read aloud must hold a word: "..." or "|<" says nothing.
bool saysSomething(const QString& text)
{
    for (const QChar c : text)
        if (c.isLetterOrNumber())
            return true;
    return false;
}

// A control to type into or choose from; the parts of a combo or spin box are left to it.
bool isField(const QWidget* w)
{
    const QWidget* parent = w->parentWidget();
    if (parent &&
        (qobject_cast<const QComboBox*>(parent) || qobject_cast<const QAbstractSpinBox*>(parent)))
        return false;
    return qobject_cast<const QLineEdit*>(w) || qobject_cast<const QComboBox*>(w) ||
           qobject_cast<const QAbstractSpinBox*>(w) || qobject_cast<const QPlainTextEdit*>(w) ||
           qobject_cast<const QTextEdit*>(w) || qobject_cast<const QAbstractItemView*>(w);
}

// A label's text as it is heard: no markup, no access-key marks, no closing colon.
QString spoken(const QLabel* label)
{
    QString text = label->text();
    if (label->textFormat() == Qt::RichText ||
        (label->textFormat() == Qt::AutoText && Qt::mightBeRichText(text)))
        text = QTextDocumentFragment::fromHtml(text).toPlainText();
    text.replace(QLatin1String("&&"), QLatin1String("\x01"));
    text.remove(QLatin1Char('&'));
    text.replace(QLatin1Char('\x01'), QLatin1Char('&'));
    text = text.trimmed();
    if (text.endsWith(QLatin1Char(':')))
        text.chop(1);
    return text.trimmed();
}

bool holds(QLayout* layout, const QWidget* w)
{
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (item->widget() == w || (item->layout() && holds(item->layout(), w)))
            return true;
    }
    return false;
}

// The label that stands before the cell of `layout` holding `w` (itself or in a row of its
// own): the label column of a form, the cell to the left in a grid, the item before in a row.
const QLabel* labelBefore(QLayout* layout, const QWidget* w)
{
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (item->widget() != w) {
            if (!item->layout() || !holds(item->layout(), w))
                continue;
            if (const QLabel* inner = labelBefore(item->layout(), w))
                return inner;
        }
        QLayoutItem* before = nullptr;
        if (auto* form = qobject_cast<QFormLayout*>(layout)) {
            int row = -1;
            QFormLayout::ItemRole role{};
            form->getItemPosition(i, &row, &role);
            if (role == QFormLayout::FieldRole)
                before = form->itemAt(row, QFormLayout::LabelRole);
        } else if (auto* grid = qobject_cast<QGridLayout*>(layout)) {
            int row = 0, column = 0, rows = 0, columns = 0;
            grid->getItemPosition(i, &row, &column, &rows, &columns);
            if (column > 0)
                before = grid->itemAtPosition(row, column - 1);
        } else if (auto* box = qobject_cast<QBoxLayout*>(layout);
                   box && i > 0 &&
                   (box->direction() == QBoxLayout::LeftToRight ||
                    box->direction() == QBoxLayout::RightToLeft)) {
            before = box->itemAt(i - 1);
        }
        return before ? qobject_cast<const QLabel*>(before->widget()) : nullptr;
    }
    return nullptr;
}

} // namespace

QString AccessibleNames::missingName(QWidget* control)
{
    if (!control->accessibleName().isEmpty())
        return QString();
    auto* button = qobject_cast<QAbstractButton*>(control);
    if (!button && !isField(control))
        return QString();
    // What the accessibility layer reads already: a caption, or a label that names it as
    // its buddy.
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(control);
    if (face && saysSomething(face->text(QAccessible::Name)))
        return QString();
    QString name;
    if (!button && control->parentWidget() && control->parentWidget()->layout()) {
        if (const QLabel* label = labelBefore(control->parentWidget()->layout(), control))
            name = spoken(label);
    }
    if (!saysSomething(name))
        name = control->toolTip();
    if (auto* line = qobject_cast<QLineEdit*>(control); line && !saysSomething(name))
        name = line->placeholderText();
    return saysSomething(name) ? name : QString();
}

bool AccessibleNames::eventFilter(QObject* watched, QEvent* event)
{
    // Every control gets a Show of its own as it, or its window, comes on show.
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        auto* w = static_cast<QWidget*>(watched);
        const QString name = missingName(w);
        if (!name.isEmpty())
            w->setAccessibleName(name);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace qmr
