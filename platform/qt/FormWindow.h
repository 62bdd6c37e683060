// The window of a dialog, drawn from its form alone.
#pragma once

#include <QDialog>
#include <QTimer>
#include <functional>
#include <vector>

#include "platform/Desktop.h"
#include "platform/qt/Module.h"

namespace orvo::qt {

/// Tells the user of a handler's failure.
using TellFailure = std::function<void(const RuntimeError& failure)>;

class FormWindow final : public QDialog {
  public:
    /// @param tell shows a message and waits
    FormWindow(IDialogEvents& events, std::function<bool()> interrupted, TellFailure tell);
    /// Shows the window and waits until the form is invisible or the user has closed the window otherwise.
    void Wait();

  protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    QWidget* Made(const Control& control);
    QWidget* ContainerOf(const Control& control);
    /// Runs a handler, tells its failure, and draws the form as it is then.
    void Run(const std::function<void()>& handler);
    void Click(const Control& control);
    void Activate();
    void Refresh();
    void RefreshControl(const Control& control, QWidget& widget) const;
    QRect Place(const Control& control) const;
    QRect Pixels(const Box& box) const;
    QString NameOf(const Control& control) const;

    IDialogEvents& events_;
    std::function<bool()> interrupted_;
    TellFailure tell_;
    std::vector<QWidget*> widgets_;  ///< one per control of the form, in its order; children of this window
    QTimer watch_;                   ///< looks at the interruption
    bool shownActive_ = false;       ///< the activation that belongs to the showing itself is over
    bool activationFailed_ = false;  ///< told once per showing
    bool ownBoxInFront_ = false;     ///< a message box of the dialog's took the activation
};

/// Twips per pixel of the screen that dialogs are centred on.
double TwipsPerPixel();

}  // namespace orvo::qt
