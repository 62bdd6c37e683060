// The window module's helper program: does what needs a process of its own.
//
//     orvo-window-helper check            ends with 0 where a window could be shown
//     orvo-window-helper keep-clipboard   takes the clipboard over and keeps it until somebody else does
#include <QClipboard>
#include <QGuiApplication>
#include <string_view>

int main(int count, char** values) {
    const std::string_view wish = count == 2 ? values[1] : "";
    if (wish != "check" && wish != "keep-clipboard") return 2;
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
