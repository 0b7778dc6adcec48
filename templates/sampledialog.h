#pragma once

#include <QDialog>
#include <memory>

class QListWidget;

namespace Ui {
class SampleDialog;
}

namespace qmr {

class Choosers;
class Prompter;
class SampleCabinets;

// frmSample: offers the samples of Sample.txt, creates the chosen one, or opens the file in
// the user's text editor.
class SampleDialog : public QDialog
{
    Q_OBJECT
public:
    SampleDialog(SampleCabinets& samples, Prompter& prompter, Choosers& choosers,
                 QWidget* parent = nullptr);
    ~SampleDialog() override;

    QListWidget* list() const { return m_list; }
    void cmdCreate();
    void cmdEdit();

private:
    SampleCabinets& m_samples;
    Prompter& m_prompter;
    Choosers& m_choosers;
    std::unique_ptr<Ui::SampleDialog> m_ui;
    QListWidget* m_list;
};

} // namespace qmr
