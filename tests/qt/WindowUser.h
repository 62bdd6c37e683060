// The window as a desktop under test, and somebody before it who does one step after the other.
#pragma once

#include <QTest>
#include <QtWidgets>
#include <array>
#include <deque>

#include "platform/qt/Application.h"
#include "platform/qt/Desktop.h"
#include "tests/adapters/TempFolder.h"
#include "tests/contracts/DesktopContract.h"

namespace orvo::qt {

using Step = std::function<void(QDialog& window)>;

inline QWidget& Widget(const QDialog& window, const char* name) {
    auto* widget = window.findChild<QWidget*>(name);
    if (widget == nullptr) throw RuntimeError(Fault::ObjectNotSet, name);
    return *widget;
}

inline Step Click(const char* name) {
    return [name](QDialog& window) { QTest::mouseClick(&Widget(window, name), Qt::LeftButton); };
}

inline Step Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    return [=](QDialog& window) {
        QWidget* focus = window.focusWidget();
        QTest::keyClick(focus == nullptr ? &window : focus, static_cast<Qt::Key>(key), modifiers);
        // A button stays down for a moment before it clicks.
        const auto buttons = window.findChildren<QPushButton*>();
        QTest::qWait(20);
        static_cast<void>(QTest::qWaitFor(
            [&] { return std::ranges::none_of(buttons, [](const QPushButton* b) { return b->isDown(); }); }));
    };
}

class WindowUser {
  public:
    explicit WindowUser(fake::World& /*world*/) {
        std::string whyNot;
        EXPECT_TRUE(EnsureApplication([] { return ""; }, whyNot)) << whyNot;
        qputenv("PATH", QByteArray::fromStdString(programs_.Path()) + ":/usr/bin:/bin");
        MakeOpener("exit 0");
        WindowOptions options;
        options.language = [] { return LangOffset(); };
        options.interrupted = [this] { return interrupted; };
        options.onFailure = [this](const std::string& failure) { failures.push_back(failure); };
        desktop = std::make_shared<qt::Desktop>(options);
        ActOnFrontWindow();
    }
    WindowUser(const WindowUser&) = delete;
    WindowUser& operator=(const WindowUser&) = delete;
    ~WindowUser() { EXPECT_TRUE(steps.empty()) << "a window closed early"; }

    /// The program that opens addresses notes them and then does as told.
    void MakeOpener(const std::string& commands) const {
        programs_.PutScript("xdg-open", "echo \"$1\" >> '" + programs_ / "opened" + "'\n" + commands);
    }
    std::shared_ptr<IDesktop> Desktop() const { return desktop; }
    void Plan(const std::vector<Act>& acts) {
        constexpr std::array kButtons{"cmdContinue(0)", "cmdContinue(1)", "cmdContinue(2)", "cmdProtocol(0)",
                                      "cmdProtocol(1)", "cmdProtocol(2)", "cmdProtocol(3)"};
        for (const Act act : acts) {
            if (act >= Act::Yes)
                boxButton_ = act == Act::Yes ? 0 : 1;
            else
                steps.push_back(Click(kButtons.at(static_cast<std::size_t>(act))));
        }
    }
    std::string Shown() const { return boxes.join('\n').toStdString() + ReadFile(programs_ / "opened"); }
    static std::string Told(const std::string& number, const std::string& text) {
        return "Run-time error '" + number + "':\n\n" + text;
    }
    static bool ClipboardHolds(const std::string& text) {
        return QApplication::clipboard()->text().toStdString() == text;
    }
    std::vector<Unattended> WithoutUser() {
        interrupted = true;
        return {{[this] { return desktop; }, false}};
    }

    static constexpr Long kPrinting = 482;
    std::shared_ptr<qt::Desktop> desktop;
    bool interrupted = false;
    std::vector<std::string> failures;  ///< that the desktop passed on
    std::deque<Step> steps;
    QStringList boxes;  ///< title, buttons and text of the message boxes that were shown

  private:
    void ActOnFrontWindow() {
        QTimer::singleShot(5, &life_, [this] {
            ActOnFrontWindow();
            auto* front = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (front == nullptr || !front->isVisible() || front != QApplication::activeWindow()) return;
            if (auto* box = qobject_cast<QMessageBox*>(front)) return Answer(*box);
            if (acting_) return;
            if (steps.empty()) {
                ADD_FAILURE() << "the window is still open after the last step";
                front->close();
                return;
            }
            const Step step = steps.front();
            steps.pop_front();
            acting_ = true;
            step(*front);
            acting_ = false;
        });
    }
    void Answer(const QMessageBox& box) {
        QStringList shown{box.windowTitle()};
        for (const auto* button : box.buttons()) shown.push_back(button->text());
        boxes.push_back((shown << box.text()).join('|'));
        box.buttons().value(boxButton_, box.buttons().back())->click();
    }

    TempFolder programs_;
    int boxButton_ = 0;  ///< of a message box, that the user clicks, if it has as many
    bool acting_ = false;
    QObject life_;
};

class WindowTest : public DialogTest {
  protected:
    WindowTest() { ShowOn(user.desktop); }
    /// Has a statement fail while the user does these steps.
    Outcome FailAnd(std::deque<Step> steps, int failures = 1, const std::string& about = "R & D") {
        user.boxes.clear();
        user.steps = std::move(steps);
        return Fail(failures, about);
    }
    WindowUser user{*world};
};

}  // namespace orvo::qt
