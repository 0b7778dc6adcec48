#include "dialogs/pathselectdialog.h"

#include <QComboBox>
#include <QDir>
#include <QFileSystemModel>
#include <QPushButton>
#include <QStorageInfo>
#include <QTreeView>

#include "core/settings.h"
#include "ui_pathselectdialog.h"

namespace qmr {

namespace {
const QString kFormName = QStringLiteral("frmPathSelect");
}

PathSelectDialog::PathSelectDialog(Settings& settings, const QString& start, QWidget* parent)
    : QDialog(parent), m_settings(settings), m_ui(std::make_unique<Ui::PathSelectDialog>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    m_drives = m_ui->drvBox;
    m_drives->addItem(QDir::homePath());
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes())
        if (volume.isValid() && volume.isReady() && m_drives->findText(volume.rootPath()) < 0)
            m_drives->addItem(volume.rootPath());

    m_model = new QFileSystemModel(this);
    m_model->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    m_model->setRootPath(QStringLiteral("/"));
    m_dirs = m_ui->dirBox;
    m_dirs->setModel(m_model);
    for (int c = 1; c < m_model->columnCount(); ++c)
        m_dirs->hideColumn(c);
    m_dirs->sortByColumn(0, Qt::AscendingOrder);

    connect(m_drives, &QComboBox::textActivated, this, [this](const QString& drive) {
        if (QFileInfo(drive).isDir()) // a drive with no medium leaves the list alone
            setPath(drive);
    });
    // One click opens a directory.
    connect(m_dirs, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        setPath(m_model->filePath(index));
        m_dirs->expand(index);
    });
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    resize(420, 480);
    const Placement p = m_settings.restorePlacement(kFormName, {y(), x(), height(), width(), 0});
    if (p.width > 0 && p.height > 0)
        setGeometry(p.left, p.top, p.width, p.height);
    setPath(QFileInfo(start).isDir() ? start : QDir::homePath());
}

PathSelectDialog::~PathSelectDialog() = default;

void PathSelectDialog::setPath(const QString& path)
{
    m_path = QDir::cleanPath(path);
    const QModelIndex index = m_model->index(m_path);
    if (index.isValid()) {
        m_dirs->setCurrentIndex(index);
        m_dirs->scrollTo(index);
    }
}

void PathSelectDialog::done(int result)
{
    const QRect g = geometry();
    m_settings.savePlacement(kFormName, Placement{g.top(), g.left(), g.height(), g.width(), 0});
    QDialog::done(result);
}

} // namespace qmr
