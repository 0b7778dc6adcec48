#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class PageNumberDialog;
}

namespace qmr {

// frmPageNumber: asks for one page's new number.
class PageNumberDialog : public QDialog
{
    Q_OBJECT
public:
    explicit PageNumberDialog(int present, QWidget* parent = nullptr);
    ~PageNumberDialog() override;
    // The number typed, or -1 after Cancel or a text that is no number.
    int reply() const { return m_reply; }

private:
    std::unique_ptr<Ui::PageNumberDialog> m_ui;
    int m_reply = -1;
};

} // namespace qmr
