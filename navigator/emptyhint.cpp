#include "navigator/emptyhint.h"

#include <QAbstractItemView>
#include <QPainter>

namespace qmr {

namespace {
constexpr char kProperty[] = "emptyHint";
constexpr int kMargin = 24;
} // namespace

void EmptyHint::set(QAbstractItemView* view, const QString& hint)
{
    if (of(view) == hint)
        return;
    view->setProperty(kProperty, hint);
    view->viewport()->update();
}

QString EmptyHint::of(const QAbstractItemView* view)
{
    return view->property(kProperty).toString();
}

void EmptyHint::paint(QAbstractItemView* view)
{
    const QAbstractItemModel* model = view->model();
    const QString hint = of(view);
    if (hint.isEmpty() || !model || model->rowCount(view->rootIndex()) > 0)
        return;
    QPainter painter(view->viewport());
    painter.setPen(view->palette().color(QPalette::PlaceholderText));
    const QRect room = view->viewport()->rect().adjusted(kMargin, kMargin, -kMargin, -kMargin);
    painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, hint);
}

} // namespace qmr
