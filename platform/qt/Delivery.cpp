#include "platform/qt/Delivery.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>
#include <functional>

#include "platform/RuntimeError.h"

namespace orvo::qt {
namespace {

constexpr int kTakeOverPatience = 2000;  // ms
constexpr int kOpenPatience = 3000;

/// Serves the windows, but not the user, until something holds or the time is over.
void WaitFor(const std::function<bool()>& holds, int milliseconds) {
    QElapsedTimer passed;
    passed.start();
    QEventLoop loop;
    QTimer tick;  // so that the loop wakes
    tick.start(10);
    while (!holds() && passed.elapsed() < milliseconds)
        loop.processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents);
}

void HandOver(QClipboard& clipboard, const std::string& helper) {
    QProcess keeper;
    keeper.setProgram(QString::fromStdString(helper));
    keeper.setArguments({"keep-clipboard"});
    keeper.setStandardInputFile(QProcess::nullDevice());
    keeper.setStandardOutputFile(QProcess::nullDevice());
    keeper.setStandardErrorFile(QProcess::nullDevice());
    if (keeper.startDetached()) WaitFor([&] { return !clipboard.ownsClipboard(); }, kTakeOverPatience);
}

/// The opener of the desktop says whether it found a program; one that is still busy has.
bool OpenWith(const QString& opener, const QString& address) {
    // Outlives this call where the program it starts stays in the foreground.
    auto* process = new QProcess(QCoreApplication::instance());
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(opener, {address});
    WaitFor([process] { return process->state() == QProcess::NotRunning; }, kOpenPatience);
    if (process->state() != QProcess::NotRunning) return true;
    const bool opened = process->exitStatus() == QProcess::NormalExit && process->exitCode() == 0 &&
                        process->error() == QProcess::UnknownError;
    process->deleteLater();
    return opened;
}

}  // namespace

void PutOnClipboard(const std::string& text, const std::string& helper) {
    QClipboard& clipboard = *QGuiApplication::clipboard();
    const QString wanted = QString::fromStdString(text);
    clipboard.clear();
    clipboard.setText(wanted);
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    if (clipboard.text() != wanted) throw RuntimeError(Fault::CannotOpenClipboard);
    if (QGuiApplication::platformName() == "xcb" && !helper.empty()) HandOver(clipboard, helper);
}

bool OpenAddress(const std::string& address) {
    const QString opener = QStandardPaths::findExecutable("xdg-open");
    if (!opener.isEmpty()) return OpenWith(opener, QString::fromStdString(address));
    return QDesktopServices::openUrl(QUrl(QString::fromStdString(address)));
}

}  // namespace orvo::qt
