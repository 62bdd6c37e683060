#include "platform/qt/Desktop.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <cmath>
#include <utility>

#include "platform/dialog/Answers.h"
#include "platform/qt/Application.h"
#include "platform/qt/Delivery.h"
#include "platform/qt/FormWindow.h"
#include "platform/qt/Printing.h"
#include "platform/qt/Texts.h"

namespace orvo::qt {
namespace {

constexpr int kWatchPause = 100;  // ms

}  // namespace

Desktop::Desktop(WindowOptions options, std::string helper)
    : options_(std::move(options)), helper_(std::move(helper)) {}

MessageAnswer Desktop::MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                                  MessageButtons buttons) {
    CheckThread();
    const bool asks = buttons == MessageButtons::YesNo;
    const MessageAnswer otherwise = asks ? MessageAnswer::No : MessageAnswer::OK;
    if (options_.interrupted()) return otherwise;
    options_.makeRoom();
    const Texts& texts = TextsOf(options_.language());
    QWidget* dialog = QApplication::activeModalWidget();
    QMessageBox box(dialog);
    box.setAttribute(Qt::WA_QuitOnClose, false);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setText(FromUtf8(text));
    box.setWindowTitle(FromUtf8(title.empty() ? options_.applicationName : title));
    box.setIcon(icon == MessageIcon::Critical ? QMessageBox::Critical : QMessageBox::NoIcon);
    const QAbstractButton* yes = asks ? box.addButton(texts.yes, QMessageBox::YesRole) : nullptr;
    box.setEscapeButton(
        box.addButton(asks ? texts.no : texts.ok, asks ? QMessageBox::NoRole : QMessageBox::AcceptRole));
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &box, [&] {
        if (options_.interrupted()) box.reject();
    });
    watch.start(kWatchPause);
    box.exec();
    if (dialog != nullptr) dialog->activateWindow();  // not every display gives the keyboard back by itself
    return asks && box.clickedButton() == yes ? MessageAnswer::Yes : otherwise;
}

void Desktop::ShowModal(IDialogEvents& events) {
    CheckThread();
    const auto tell = [this](const RuntimeError& failure) { TellFailure(failure); };
    if (options_.interrupted()) return dialog::AnswerUnseen(events, dialog::kLeaveProcedure, tell);
    options_.makeRoom();
    options_.onFailure(events.Controls().At("lblError", 0).Caption());
    FormWindow window(events, options_.interrupted, tell);
    window.Wait();
}

void Desktop::Beep() {
    CheckThread();
    QApplication::beep();
}

void Desktop::ResetPointer() {
    CheckThread();
    while (QGuiApplication::overrideCursor() != nullptr) QGuiApplication::restoreOverrideCursor();
}

Box Desktop::Screen() {
    CheckThread();
    const QSize pixels = QGuiApplication::primaryScreen()->size();
    const auto twips = [](int length) { return static_cast<Long>(std::lround(length * TwipsPerPixel())); };
    return {0, 0, twips(pixels.width()), twips(pixels.height())};
}

void Desktop::Print(const std::vector<std::string>& lines) {
    CheckThread();
    PrintOnDefault(lines, options_.applicationName);
}

void Desktop::CopyToClipboard(const std::string& text) {
    CheckThread();
    PutOnClipboard(text, helper_);
}

void Desktop::Open(const std::string& address) {
    CheckThread();
    if (OpenAddress(address)) return;
    const QString text = QString(TextsOf(options_.language()).noOpener).arg(FromUtf8(address));
    MessageBox(text.toStdString(), "", MessageIcon::None, MessageButtons::OK);
}

void Desktop::TellFailure(const RuntimeError& failure) {
    const QString text = QString(TextsOf(options_.language()).failure)
                             .arg(QString::number(failure.Number()), FromUtf8(failure.Description()));
    MessageBox(text.toStdString(), "", MessageIcon::Critical, MessageButtons::OK);
}

}  // namespace orvo::qt
