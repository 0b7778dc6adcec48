#pragma once

#include <QDialog>
#include <QHash>
#include <QVector>
#include <memory>

class QLabel;

namespace Ui {
class PagePropertiesDialog;
}

namespace qmr {

class Database;

// frmPage: the facts of one page, or a summary of several. Nothing can be changed in it.
class PagePropertiesDialog : public QDialog
{
    Q_OBJECT
public:
    explicit PagePropertiesDialog(Database& db, QWidget* parent = nullptr);
    ~PagePropertiesDialog() override;

    void populate(qint32 pageId);
    // The selected items' keys of the page list; only "PAG" keys count.
    void populateMultiple(const QVector<qint32>& pageIds);
    QString text(const QString& labelName) const;

private:
    QLabel* label(const char* name) const;

    Database& m_db;
    std::unique_ptr<Ui::PagePropertiesDialog> m_ui;
    QHash<QString, QLabel*> m_labels;
};

} // namespace qmr
