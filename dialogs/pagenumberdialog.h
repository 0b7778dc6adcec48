#pragma once

#include <QDialog>

class QLineEdit;

namespace qmr {

// frmPageNumber: asks for one page's new number.
class PageNumberDialog : public QDialog
{
    Q_OBJECT
public:
    explicit PageNumberDialog(int present, QWidget* parent = nullptr);
    // The number typed, or -1 after Cancel or a text that is no number.
    int reply() const { return m_reply; }

private:
    QLineEdit* m_number;
    int m_reply = -1;
};

} // namespace qmr
