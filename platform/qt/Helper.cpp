// The window module's helper program: does what needs a process of its own.
//
//     orvo-window-helper check            ends with 0 where a window could be shown
//     orvo-window-helper keep-clipboard   takes the clipboard over and keeps it until somebody else does
#include <QClipboard>
#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

/// Says why there is no display, in one line, and ends without the dump of memory that is usual then.
void OnMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type == QtFatalMsg) std::_Exit(EXIT_FAILURE);
    if (context.category != nullptr && std::strncmp(context.category, "qt.qpa", 6) == 0)
        static_cast<void>(std::fputs((text.trimmed() + '\n').toUtf8().constData(), stderr));
}

}  // namespace

int main(int count, char** values) {
    const std::string_view wish = count == 2 ? values[1] : "";
    if (wish != "check" && wish != "keep-clipboard") return 2;
    qInstallMessageHandler(OnMessage);
    const QGuiApplication application(count, values);  // ends the process where there is no display
    if (wish == "check") return 0;

    QClipboard& clipboard = *QGuiApplication::clipboard();
    const QString text = clipboard.text();
    clipboard.setText(text);
    QObject::connect(&clipboard, &QClipboard::dataChanged, [&clipboard] {
        if (!clipboard.ownsClipboard()) QCoreApplication::quit();
    });
    return QGuiApplication::exec();
}
