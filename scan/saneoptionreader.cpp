#include "scan/saneoptionreader.h"

namespace qmr {

namespace {

QString text(SANE_String_Const s)
{
    return s ? QString::fromUtf8(s) : QString();
}

QString unitText(SANE_Unit unit)
{
    switch (unit) {
    case SANE_UNIT_PIXEL:
        return QStringLiteral("px");
    case SANE_UNIT_BIT:
        return QStringLiteral("bit");
    case SANE_UNIT_MM:
        return QStringLiteral("mm");
    case SANE_UNIT_DPI:
        return QStringLiteral("dpi");
    case SANE_UNIT_PERCENT:
        return QStringLiteral("%");
    case SANE_UNIT_MICROSECOND:
        return QStringLiteral("µs");
    default:
        return QString();
    }
}

} // namespace

QVector<ScanOption> SaneOptionReader::read(SaneLibrary& library, SANE_Handle handle,
                                           QHash<QString, int>* index)
{
    QVector<ScanOption> options;
    if (!handle)
        return options;
    SANE_Int count = 0;
    if (library.control(handle, 0, SANE_ACTION_GET_VALUE, &count, nullptr) != SANE_STATUS_GOOD)
        return options;
    QString group;
    for (SANE_Int i = 1; i < count; ++i) {
        const SANE_Option_Descriptor* d = library.descriptor(handle, i);
        if (!d)
            continue;
        ScanOption o;
        o.title = text(d->title);
        o.description = text(d->desc);
        if (d->type == SANE_TYPE_GROUP) {
            group = o.title;
            o.type = ScanOption::Type::Group;
            options.append(o);
            continue;
        }
        o.name = text(d->name);
        o.group = group;
        o.unit = unitText(d->unit);
        switch (d->type) {
        case SANE_TYPE_BOOL:
            o.type = ScanOption::Type::Bool;
            break;
        case SANE_TYPE_INT:
            o.type = ScanOption::Type::Int;
            break;
        case SANE_TYPE_FIXED:
            o.type = ScanOption::Type::Fixed;
            break;
        case SANE_TYPE_STRING:
            o.type = ScanOption::Type::String;
            break;
        default:
            o.type = ScanOption::Type::Button;
            break;
        }
        const bool words = o.type == ScanOption::Type::Bool || o.type == ScanOption::Type::Int ||
                           o.type == ScanOption::Type::Fixed;
        o.count = words ? qMax(1, int(d->size / SANE_Int(sizeof(SANE_Word)))) : 1;
        o.active = SANE_OPTION_IS_ACTIVE(d->cap);
        o.settable = SANE_OPTION_IS_SETTABLE(d->cap);
        o.advanced = (d->cap & SANE_CAP_ADVANCED) != 0;
        const bool fixed = o.type == ScanOption::Type::Fixed;
        auto number = [fixed](SANE_Word w) { return fixed ? SANE_UNFIX(w) : double(w); };
        switch (d->constraint_type) {
        case SANE_CONSTRAINT_RANGE:
            if (d->constraint.range) {
                o.constraint = ScanOption::Constraint::Range;
                o.minimum = number(d->constraint.range->min);
                o.maximum = number(d->constraint.range->max);
                o.quant = number(d->constraint.range->quant);
            }
            break;
        case SANE_CONSTRAINT_WORD_LIST:
            if (d->constraint.word_list) {
                o.constraint = ScanOption::Constraint::WordList;
                for (SANE_Int k = 1; k <= d->constraint.word_list[0]; ++k)
                    o.words.append(number(d->constraint.word_list[k]));
            }
            break;
        case SANE_CONSTRAINT_STRING_LIST:
            if (d->constraint.string_list) {
                o.constraint = ScanOption::Constraint::StringList;
                for (int k = 0; d->constraint.string_list[k]; ++k)
                    o.strings.append(text(d->constraint.string_list[k]));
            }
            break;
        default:
            break;
        }
        const bool readable = o.active && (d->cap & SANE_CAP_SOFT_DETECT) && o.count == 1 &&
                              o.type != ScanOption::Type::Button;
        if (readable) {
            if (o.type == ScanOption::Type::String) {
                QByteArray buffer(qMax<SANE_Int>(d->size, 1) + 1, '\0');
                if (library.control(handle, i, SANE_ACTION_GET_VALUE, buffer.data(), nullptr) ==
                    SANE_STATUS_GOOD)
                    o.value = QString::fromUtf8(buffer.constData());
            } else {
                SANE_Word w = 0;
                if (library.control(handle, i, SANE_ACTION_GET_VALUE, &w, nullptr) ==
                    SANE_STATUS_GOOD) {
                    if (o.type == ScanOption::Type::Bool)
                        o.value = bool(w);
                    else if (fixed)
                        o.value = SANE_UNFIX(w);
                    else
                        o.value = int(w);
                }
            }
        }
        if (index && !o.name.isEmpty() && !index->contains(o.name))
            index->insert(o.name, i);
        options.append(o);
    }
    return options;
}

} // namespace qmr
