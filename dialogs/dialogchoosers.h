#pragma once

#include "core/choosers.h"

class QWidget;

namespace qmr {

// The real choosers: the password window and the system's directory chooser.
class DialogChoosers : public Choosers
{
public:
    explicit DialogChoosers(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }

    std::optional<QString> askPassword() override;
    std::optional<QString> chooseDirectory(const QString& start) override;

private:
    QWidget* m_parent;
};

} // namespace qmr
