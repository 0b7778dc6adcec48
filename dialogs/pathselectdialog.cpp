#include "dialogs/pathselectdialog.h"

#include <QComboBox>
#include <QDir>
#include <QFileSystemModel>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStorageInfo>
#include <QTreeView>

#include "core/settings.h"
#include "ui_pathselectdialog.h"

namespace qmr {

namespace {

const QString kFormName = QStringLiteral("frmPathSelect");

// The system's virtual directories hold no documents: nobody files pages there.
bool isVirtual(const QString& path)
{
    static const QStringList hidden = {QStringLiteral("/proc"), QStringLiteral("/sys"),
                                       QStringLiteral("/dev"), QStringLiteral("/run")};
    for (const QString& dir : hidden)
        if (path == dir || path.startsWith(dir + QLatin1Char('/')))
            return true;
    return false;
}

// The directory tree without the virtual directories.
class RealDirectories : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        const auto* files = static_cast<const QFileSystemModel*>(sourceModel());
        return !isVirtual(files->filePath(files->index(row, 0, parent)));
    }
};

} // namespace

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
        if (volume.isValid() && volume.isReady() && !isVirtual(volume.rootPath()) &&
            m_drives->findText(volume.rootPath()) < 0)
            m_drives->addItem(volume.rootPath());

    m_model = new QFileSystemModel(this);
    m_model->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    m_model->setRootPath(QStringLiteral("/"));
    m_shown = new RealDirectories(this);
    m_shown->setSourceModel(m_model);
    m_shown->setSortCaseSensitivity(Qt::CaseInsensitive);
    m_dirs = m_ui->dirBox;
    m_dirs->setModel(m_shown);
    for (int c = 1; c < m_model->columnCount(); ++c)
        m_dirs->hideColumn(c);
    m_dirs->sortByColumn(0, Qt::AscendingOrder);

    connect(m_drives, &QComboBox::textActivated, this, [this](const QString& drive) {
        if (QFileInfo(drive).isDir()) // a drive with no medium leaves the list alone
            setPath(drive);
    });
    // One click opens a directory.
    connect(m_dirs, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        setPath(m_model->filePath(m_shown->mapToSource(index)));
        m_dirs->expand(index);
    });
    // The tree reads directories in the background: once the ones that lead to the path are
    // in, the path is brought into view.
    connect(m_model, &QFileSystemModel::directoryLoaded, this, [this](const QString& dir) {
        if (m_path == dir || m_path.startsWith(dir == QLatin1String("/") ? dir : dir + '/')) {
            const QModelIndex index = m_shown->mapFromSource(m_model->index(m_path));
            if (index.isValid())
                m_dirs->scrollTo(index, QAbstractItemView::PositionAtCenter);
        }
    });
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    resize(420, 480);
    const Placement p = m_settings.restorePlacement(kFormName, {y(), x(), height(), width(), 0});
    if (p.width > 0 && p.height > 0)
        setGeometry(p.left, p.top, p.width, p.height);
    // It opens where the box points, else at home: never at the top of the whole disk.
    setPath(QFileInfo(start).isDir() && !isVirtual(QDir::cleanPath(start)) ? start
                                                                           : QDir::homePath());
}

PathSelectDialog::~PathSelectDialog() = default;

void PathSelectDialog::setPath(const QString& path)
{
    m_path = QDir::cleanPath(path);
    const QModelIndex index = m_shown->mapFromSource(m_model->index(m_path));
    if (index.isValid()) {
        m_dirs->setCurrentIndex(index);
        m_dirs->scrollTo(index, QAbstractItemView::PositionAtCenter);
    }
    // The drive list names the place that holds the path: the longest one that leads to it.
    int drive = -1;
    for (int i = 0; i < m_drives->count(); ++i) {
        const QString root = m_drives->itemText(i);
        const bool holds = m_path == root || root == QLatin1String("/") ||
                           m_path.startsWith(root + QLatin1Char('/'));
        if (holds && (drive < 0 || root.size() > m_drives->itemText(drive).size()))
            drive = i;
    }
    if (drive >= 0)
        m_drives->setCurrentIndex(drive);
}

void PathSelectDialog::done(int result)
{
    const QRect g = geometry();
    m_settings.savePlacement(kFormName, Placement{g.top(), g.left(), g.height(), g.width(), 0});
    QDialog::done(result);
}

} // namespace qmr
