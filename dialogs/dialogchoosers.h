#pragma once

#include <QCoreApplication>

#include "core/choosers.h"

class QWidget;

namespace qmr {

// The real choosers: the password window, the desktop's file and folder choosers, and
// opening files with the desktop's programs.
class DialogChoosers : public Choosers
{
    Q_DECLARE_TR_FUNCTIONS(qmr::DialogChoosers)

public:
    explicit DialogChoosers(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }

    std::optional<QString> askPassword() override;
    std::optional<QString> chooseDirectory(const QString& start) override;
    std::optional<QString> chooseFileToOpen(const QString& start, const QStringList& filters,
                                            int selectedFilter) override;
    std::optional<QString> openFile(const QString& path) override;
    std::optional<QString> saveFile(const SaveFileRequest& request) override;

private:
    QWidget* m_parent;
};

} // namespace qmr
