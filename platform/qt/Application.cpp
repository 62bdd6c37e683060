#include "platform/qt/Application.h"

#include <QApplication>
#include <QThread>
#include <clocale>

#include "platform/RuntimeError.h"

namespace orvo::qt {
namespace {

/// The toolkit takes over the user's locale, and with it the decimal comma of every library in the process.
class LocaleKept {
  public:
    LocaleKept() : locale_(std::setlocale(LC_ALL, nullptr)) {}
    ~LocaleKept() { static_cast<void>(std::setlocale(LC_ALL, locale_.c_str())); }
    LocaleKept(const LocaleKept&) = delete;
    LocaleKept& operator=(const LocaleKept&) = delete;

  private:
    std::string locale_;
};

void MakeApplication() {
    const LocaleKept kept;
    static int count = 1;
    static char name[] = "orvo-tile";
    static char* arguments[] = {name, nullptr};
    // Never destroyed: at the end of a process its libraries may be gone before it.
    static const auto* const application = new QApplication(count, arguments);
    static_cast<void>(application);
    QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace

bool EnsureApplication(const std::function<std::string()>& displayTrouble, std::string& whyNot) {
    if (QCoreApplication::instance() == nullptr) {
        whyNot = displayTrouble();
        if (!whyNot.empty()) return false;
        MakeApplication();
    }
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr) return true;
    whyNot = "the program's own Qt application has no windows";
    return false;
}

void CheckThread() {
    if (QThread::currentThread() == QCoreApplication::instance()->thread()) return;
    throw RuntimeError(Fault::CannotCreateObject, "a window on a thread other than the window thread");
}

}  // namespace orvo::qt
