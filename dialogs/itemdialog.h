#pragma once

#include <QDialog>
#include <QHash>
#include <functional>
#include <memory>

#include "core/level.h"
#include "core/navigatorcallbacks.h"
#include "store/commandcontext.h"
#include "store/itemfields.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QToolButton;

namespace Ui {
class ItemDialog;
}

namespace qmr {

class ItemStore;

// Fills a new drawer from a template; returns what it made, for the tree.
using TemplateApplier =
    std::function<QVector<CreatedItem>(const QString& name, qint32 drawerId, ItemStore& items)>;

// What a new-document dialog hands back to its caller.
struct NewDocumentResult
{
    bool cancelled = true;
    QString name;
    QString dateOnDocument;
    QString description;
    QString amount;
};

// The add and properties dialog of a cabinet, drawer, folder or document (frmCabinet,
// frmDrawer, frmFolder, frmDocument), and the collect-only frmDocumentNew. What differs by
// level (captions, fields, tabs, statistics, the test for doubles) comes from one table.
class ItemDialog : public QDialog
{
    Q_OBJECT
public:
    // `collectOnly` makes frmDocumentNew: it checks and returns the fields, and writes nothing.
    ItemDialog(Level level, const CommandContext& context, QWidget* parent = nullptr,
               bool collectOnly = false);
    // The context is held by reference: a temporary one would be gone before its use.
    ItemDialog(Level level, CommandContext&& context, QWidget* parent = nullptr,
               bool collectOnly = false) = delete;
    ~ItemDialog() override;

    // Mode "Add" below `parentId` (ignored for cabinets).
    void setAdd(qint32 parentId);
    // Mode "Edit" of an existing item; false when its row is gone.
    bool setEdit(qint32 id);
    // Offers the drawer templates (new drawers only); nothing when there are none.
    void populateTemplates(const QStringList& names, TemplateApplier apply);

    QString mode() const { return m_mode; }
    qint32 itemId() const { return m_id; }
    Level level() const { return m_level; }
    void updateCaption();
    const NewDocumentResult& newDocument() const { return m_result; }
    bool statisticsLoaded() const { return m_statsLoaded; }

public slots:
    void cmdOK();
    void imgNow();
    // Opens the directory chooser for the storage path.
    void cmdBrowse();

private:
    void buildWidgets();
    void loadStatistics();
    void storageChanged();
    ItemFields fieldsFromControls() const;
    void showFields(const ItemFields& fields);
    // Shows a refusal and puts the focus where it belongs; always false.
    bool refuse(const QString& message, QWidget* focus);
    bool validate();
    void write();

    Level m_level;
    const CommandContext& m_services;
    bool m_collectOnly;
    QString m_mode = QStringLiteral("Add");
    qint32 m_id = -1;
    qint32 m_parentId = -1;
    bool m_statsLoaded = false;
    TemplateApplier m_applyTemplate;
    NewDocumentResult m_result;
    std::unique_ptr<Ui::ItemDialog> m_ui;

    QTabWidget* m_tabs = nullptr;
    QWidget* m_statsTab = nullptr;
    QWidget* m_storageTab = nullptr;
    QLineEdit* m_name = nullptr;
    QLineEdit* m_password = nullptr;
    QPlainTextEdit* m_description = nullptr;
    QLineEdit* m_email = nullptr;
    QLineEdit* m_date = nullptr;
    QToolButton* m_now = nullptr;
    QLineEdit* m_amount = nullptr;
    QRadioButton* m_storage0 = nullptr;
    QRadioButton* m_storage1 = nullptr;
    QLineEdit* m_saveTo = nullptr;
    QPushButton* m_browse = nullptr;
    QLabel* m_templateLabel = nullptr;
    QComboBox* m_template = nullptr;
    QPushButton* m_ok = nullptr;
    QHash<QString, QLabel*> m_statLabels;
};

} // namespace qmr
