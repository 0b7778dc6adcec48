#pragma once

#include <QDialog>
#include <QLocale>
#include <memory>

namespace Ui {
class AboutDialog;
}

namespace qmr {

// frmAbout: the program's name and version, and how many pages the store holds.
class AboutDialog : public QDialog
{
    Q_OBJECT
public:
    explicit AboutDialog(qint64 pageCount, QWidget* parent = nullptr);
    ~AboutDialog() override;

    static QString version();
    // The count as "###,###,###,###" shows it: digits in groups of three with the locale's
    // group separator. Every digit of that format is optional, so no pages shows no digits.
    static QString formatPageCount(qint64 count, const QLocale& locale = QLocale());

private:
    std::unique_ptr<Ui::AboutDialog> m_ui;
};

} // namespace qmr
