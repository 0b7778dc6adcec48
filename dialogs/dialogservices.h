#pragma once

#include <functional>

#include <QString>
#include <QVector>

namespace qmr {

class Choosers;
class ItemStore;
class NavigatorCallbacks;
class Prompter;
class Session;
struct CreatedItem;

// What every item dialog works with.
struct DialogServices
{
    Session& session;
    Prompter& prompter;
    Choosers& choosers;
    NavigatorCallbacks* navigator = nullptr;
};

// Fills a new drawer from a template; returns what it made, for the tree.
using TemplateApplier =
    std::function<QVector<CreatedItem>(const QString& name, qint32 drawerId, ItemStore& items)>;

} // namespace qmr
