#include "platform/qt/FormWindow.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/dialog/Answers.h"
#include "platform/qt/Controls.h"
#include "platform/qt/Fit.h"
#include "platform/qt/Texts.h"
#include "support/LabelRoom.h"

namespace orvo::qt {
namespace {

constexpr double kTwipsPerInch = 1440;
constexpr int kWatchPause = 100;  // ms

}  // namespace

double TwipsPerPixel() {
    return kTwipsPerInch / QGuiApplication::primaryScreen()->logicalDotsPerInch();
}

FormWindow::FormWindow(IDialogEvents& events, std::function<bool()> interrupted, TellFailure tell)
    : events_(events), interrupted_(std::move(interrupted)), tell_(std::move(tell)) {
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    setAttribute(Qt::WA_QuitOnClose, false);
    setObjectName(QString::fromStdString(events.Controls().self.name));
    for (const Control& control : events.Controls().controls) widgets_.push_back(Made(control));
    for (std::size_t n = 1; n < widgets_.size(); ++n) setTabOrder(widgets_[n - 1], widgets_[n]);
    QObject::connect(&watch_, &QTimer::timeout, this, [this] {
        if (interrupted_()) Run([this] { events_.cmdContinue_Click(dialog::kLeaveProcedure); });
    });
}

void FormWindow::Wait() {
    Activate();
    if (!events_.Controls().self.visible) return;
    watch_.start(kWatchPause);
    setFocus();  // of no control: a key pressed in haste does nothing
    exec();
}

bool FormWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate) {
        ownBoxInFront_ = QApplication::activeModalWidget() != this;
    } else if (event->type() == QEvent::WindowActivate) {
        // The dialog's own boxes do not count: a handler that fails here would show them without end.
        if (std::exchange(shownActive_, true) && !std::exchange(ownBoxInFront_, false)) Activate();
    }
    return QDialog::event(event);
}

void FormWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    activateWindow();
}

QWidget* FormWindow::Made(const Control& control) {
    QWidget* container = ContainerOf(control);
    QWidget* made = nullptr;
    if (control.TypeName() == "Frame") {
        made = new Frame(container);
    } else if (control.TypeName() == "CommandButton") {
        auto* button = new CaptionButton(container);
        QObject::connect(button, &QPushButton::clicked, this, [this, &control] { Click(control); });
        made = button;
    } else if (control.TypeName() == "ListBox") {
        made = new List(container);
    } else {
        made = new TextLabel(container);
    }
    QString name = QString::fromStdString(control.name);
    if (control.index >= 0) name += QString("(%1)").arg(control.index);
    made->setObjectName(name);
    return made;
}

QWidget* FormWindow::ContainerOf(const Control& control) {
    const auto& controls = events_.Controls().controls;
    for (std::size_t n = 0; n < widgets_.size(); ++n)
        if (controls[n].name == control.container) return widgets_[n];
    return this;
}

void FormWindow::Run(const std::function<void()>& handler) {
    dialog::Guard(handler, tell_);
    Refresh();
    if (!events_.Controls().self.visible) done(Accepted);
}

void FormWindow::Click(const Control& control) {
    Run([&] { orvo::Click(events_, control); });
}

void FormWindow::Activate() {
    Run([this] {
        try {
            events_.Form_Activate();
        } catch (...) {
            if (!std::exchange(activationFailed_, true)) throw;
        }
    });
}

void FormWindow::Refresh() {
    const Form& form = events_.Controls();
    setWindowTitle(FromUtf8(form.self.Caption()));
    setFixedSize(Pixels({0, 0, form.scaleWidth, form.scaleHeight}).size());
    move(QGuiApplication::primaryScreen()->geometry().topLeft() + Pixels(form.self.box).topLeft());
    for (std::size_t n = 0; n < widgets_.size(); ++n) RefreshControl(form.controls[n], *widgets_[n]);
}

void FormWindow::RefreshControl(const Control& control, QWidget& widget) const {
    widget.setGeometry(Place(control));
    widget.setVisible(control.visible);
    widget.setAccessibleName(NameOf(control));
    const QFont font = ReadableFont(control.font);
    if (auto* list = dynamic_cast<List*>(&widget)) {
        list->setFont(font);
        list->Place(Place(control));
        list->Show(control.list);
        return;
    }
    const QString caption = FromUtf8(control.Caption());
    if (auto* frame = dynamic_cast<Frame*>(&widget)) {
        frame->setFont(font);
        frame->setTitle(caption);
    } else if (auto* button = dynamic_cast<CaptionButton*>(&widget)) {
        button->Show(caption, font);
    } else if (auto* label = dynamic_cast<TextLabel*>(&widget)) {
        label->Show(caption, font);
        label->setAccessibleDescription(caption);
    }
}

QRect FormWindow::Place(const Control& control) const {
    return Pixels(control.TypeName() == "Label" ? LabelRoom(control, events_.Controls()) : control.box);
}

QRect FormWindow::Pixels(const Box& box) const {
    const auto pixel = [twips = TwipsPerPixel()](Long at) {
        return static_cast<int>(std::lround(at / twips));
    };
    const QPoint corner(pixel(box.left), pixel(box.top));
    return {corner,
            QSize(pixel(box.left + box.width) - corner.x(), pixel(box.top + box.height) - corner.y())};
}

QString FormWindow::NameOf(const Control& control) const {
    return WithoutMark(FromUtf8(SpokenName(control, events_.Controls()))).trimmed();
}

}  // namespace orvo::qt
