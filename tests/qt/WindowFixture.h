// What the window's tests share: a real error dialog over a fake platform with the real desktop, and a user
// who does one step after the other.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "errorreport/Ferrow.h"
#include "errorreport/Procedure.h"
#include "platform/fake/World.h"
#include "platform/qt/Application.h"
#include "platform/qt/Controls.h"
#include "platform/qt/Desktop.h"
#include "support/Strings.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::qt {

inline constexpr ProcedureText kCut{"[Demo] Public Sub Cut()", "Demo", "Cut"};
inline constexpr int kCutLine = 4711;

/// What is left of a failing procedure: how often its statement ran, and whether the next one did.
struct Outcome {
    int runs = 0;
    bool next = false;
    bool operator==(const Outcome&) const = default;
};

inline QString ShownText(const QWidget& widget) {
    if (const auto* frame = dynamic_cast<const QGroupBox*>(&widget)) return frame->title();
    if (const auto* button = dynamic_cast<const QPushButton*>(&widget)) {
        return button->text().replace('\n', ' ');
    }
    if (const auto* label = dynamic_cast<const QTextEdit*>(&widget)) return label->toPlainText();
    QStringList entries;
    if (const auto* list = dynamic_cast<const QListWidget*>(&widget))
        for (int row = 0; row < list->count(); ++row) entries.push_back(list->item(row)->text());
    return entries.join('|');
}

/// A file of this folder: rows of texts between bars.
inline std::vector<QStringList> Table(const std::string& name) {
    std::vector<QStringList> rows;
    const QString text = QString::fromStdString(ReadFile(ORVO_QT_TEST_DATA + name));
    for (const QString& line : text.split('\n', Qt::SkipEmptyParts)) rows.push_back(line.split('|'));
    return rows;
}

class WindowTest : public testing::Test {
  protected:
    using Step = std::function<void(QDialog& window)>;
    struct ShownBox {
        std::string text;
        std::string title;
        std::vector<std::string> buttons;
    };

    WindowTest() {
        std::string whyNot;
        EXPECT_TRUE(EnsureApplication([] { return ""; }, whyNot)) << whyNot;
        qputenv("PATH", QByteArray::fromStdString(programs.Path()) + ":/usr/bin:/bin");
        MakeOpener("exit 0");
        WindowOptions options;
        options.language = [] { return LangOffset(); };
        options.interrupted = [this] { return interrupted; };
        options.onFailure = [this](const std::string& failure) { heard.push_back(failure); };
        desktop = std::make_shared<Desktop>(options);
        platform::Platform made = world->MakePlatform();
        made.desktop = desktop;
        platform::Install(std::move(made));
        SetErrorDialog(std::make_unique<Ferrow>());
        LangOffset() = 0;
        Tick();
    }
    ~WindowTest() override {
        SetErrorDialog(nullptr);
        platform::Install({});
        LangOffset() = 0;
        EXPECT_TRUE(steps.empty()) << "a window closed early";
    }

    /// The program that opens addresses notes them and then does as told.
    void MakeOpener(const std::string& commands) {
        programs.PutScript("xdg-open", "echo \"$1\" >> '" + programs / "opened" + "'\n" + commands);
    }
    std::string Opened() const { return ReadFile(programs / "opened"); }
    std::string Clipboard() const { return QApplication::clipboard()->text().toStdString(); }

    /// Has a statement fail, for the first `failures` runs, while the user does these steps.
    Outcome Fail(std::deque<Step> user, int failures = 1) {
        steps = std::move(user);
        Outcome outcome;
        Procedure<void>(kCut).Run([&](Statements& run) {
            run(
                [&] {
                    if (++outcome.runs <= failures) throw RuntimeError(Fault::DiskFull, "R & D");
                },
                kCutLine);
            outcome.next = true;
        });
        return outcome;
    }

    static QWidget& Widget(const QDialog& window, const char* name) {
        auto* widget = window.findChild<QWidget*>(name);
        if (widget == nullptr) throw RuntimeError(Fault::ObjectNotSet, name);
        return *widget;
    }
    static Step Click(const char* name) {
        return [name](QDialog& window) { QTest::mouseClick(&Widget(window, name), Qt::LeftButton); };
    }
    static Step Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        return [=](QDialog& window) {
            QWidget* focus = window.focusWidget();
            QTest::keyClick(focus == nullptr ? &window : focus, static_cast<Qt::Key>(key), modifiers);
            QTest::qWait(150);  // a button stays down for a moment
        };
    }

    TempFolder programs;
    std::shared_ptr<fake::World> world = fake::World::Make();
    std::string& log = world->files["C:\\Temp\\Orvo_Tile.EPT"];
    std::shared_ptr<Desktop> desktop;
    bool interrupted = false;
    std::vector<std::string> heard;
    std::deque<Step> steps;
    std::vector<ShownBox> boxes;  ///< message boxes that were shown
    int boxButton = 0;            ///< their button that the user clicks, if they have as many

  private:
    /// Looks at what is in front, and has the user act on it.
    void Tick() {
        QTimer::singleShot(5, &life_, [this] {
            Tick();
            auto* front = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (front == nullptr || !front->isVisible() || front != QApplication::activeWindow()) return;
            if (auto* box = qobject_cast<QMessageBox*>(front)) {
                ShownBox shown{box->text().toStdString(), box->windowTitle().toStdString(), {}};
                for (const auto* button : box->buttons())
                    shown.buttons.push_back(button->text().toStdString());
                boxes.push_back(shown);
                box->buttons().value(boxButton, box->buttons().back())->click();
            } else if (acting_) {
                return;
            } else if (steps.empty()) {
                ADD_FAILURE() << "the window is still open after the last step";
                front->close();
            } else {
                const Step step = steps.front();
                steps.pop_front();
                acting_ = true;
                step(*front);
                acting_ = false;
            }
        });
    }

    bool acting_ = false;
    QObject life_;
};

}  // namespace orvo::qt
