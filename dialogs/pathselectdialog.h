#pragma once

#include <QDialog>
#include <memory>

class QComboBox;
class QFileSystemModel;
class QSortFilterProxyModel;
class QTreeView;

namespace Ui {
class PathSelectDialog;
}

namespace qmr {

class Settings;

// frmPathSelect: a directory chooser with a list of drives (mounted volumes) and a directory
// tree that opens a directory on one click. It opens at the given directory or at home, and
// leaves out the system's virtual directories (/proc, /sys, /dev, /run).
class PathSelectDialog : public QDialog
{
    Q_OBJECT
public:
    PathSelectDialog(Settings& settings, const QString& start, QWidget* parent = nullptr);
    ~PathSelectDialog() override;

    QString path() const { return m_path; }
    void setPath(const QString& path);

protected:
    void done(int result) override;

private:
    Settings& m_settings;
    std::unique_ptr<Ui::PathSelectDialog> m_ui;
    QComboBox* m_drives;
    QTreeView* m_dirs;
    QFileSystemModel* m_model;
    QSortFilterProxyModel* m_shown;
    QString m_path;
};

} // namespace qmr
