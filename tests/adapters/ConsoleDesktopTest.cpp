#include <gmock/gmock.h>

#include <deque>
#include <sstream>

#include "platform/console/Desktop.h"

namespace orvo::console {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A dialog with one failure; keeps the clicks.
class Dialog : public IDialogEvents {
  public:
    void cmdContinue_Click(Integer index) override { clicks.push_back(index); }
    FailureView Form_Activate() override {
        FailureView view;
        view.title = "WARNING!";
        view.rows = {{"Error description:", "6 (Overflow)"}, {"Modul:", "clsX"}};
        view.programInfo = "Program  V1.2.3";
        view.callStackCaption = "CallStack:";
        view.callStack = {"newest", "oldest"};
        view.continueCaption = "Continue...";
        view.choices = {"&Redo Command", "wieder&holen", "Avec &é"};
        return view;
    }
    std::vector<Integer> clicks;
};

class ConsoleDesktopTest : public testing::Test {
  protected:
    /// A desktop whose user answers with these lines and then ends the input.
    Desktop Make(Policy policy, std::deque<std::string> answers, bool terminal = true) {
        DesktopOptions options;
        options.out = &out_;
        options.policy = policy;
        options.prefix = "program: ";
        options.interrupted = [this] { return interrupted_; };
        options.onFailure = [this](const std::string& failure) { heard_.push_back(failure); };
        if (terminal) {
            options.read = [answers]() mutable -> std::optional<std::string> {
                if (answers.empty()) return std::nullopt;
                std::string line = answers.front();
                answers.pop_front();
                return line;
            };
        }
        return Desktop(std::move(options));
    }

    Integer Choice(Policy policy, std::deque<std::string> answers, bool terminal = true) {
        Desktop desktop = Make(policy, std::move(answers), terminal);
        Dialog dialog;
        desktop.ShowModal(dialog);
        EXPECT_EQ(dialog.clicks.size(), 1U);
        return dialog.clicks.empty() ? Integer{-1} : dialog.clicks.front();
    }

    std::ostringstream out_;
    bool interrupted_ = false;
    std::vector<std::string> heard_;
};

TEST_F(ConsoleDesktopTest, AnswersAreNumbersOrAccessKeys) {
    EXPECT_EQ(Choice(Policy::Ask, {"1"}), 0);
    EXPECT_EQ(Choice(Policy::Ask, {" 2\r"}), 1);
    EXPECT_EQ(Choice(Policy::Ask, {"R"}), 0);
    EXPECT_EQ(Choice(Policy::Ask, {"h"}), 1);
    EXPECT_EQ(Choice(Policy::Ask, {"é"}), 2);
    EXPECT_EQ(Choice(Policy::Ask, {"", "4", "0", "redo", "w", "3"}), 2);
    EXPECT_EQ(Choice(Policy::Ask, {}), 2) << "the end of input must not repeat a retry for ever";
}

TEST_F(ConsoleDesktopTest, ShowsTheWholeFailure) {
    Choice(Policy::Ask, {"1"});
    for (const char* text : {"WARNING!", "Error description: 6 (Overflow)", "Modul: clsX", "Program  V1.2.3",
                             "newest\n    oldest", "1  [R]edo Command", "2  wieder[h]olen", "3  Avec [é]"}) {
        EXPECT_THAT(out_.str(), HasSubstr(text));
    }
    EXPECT_THAT(heard_, ElementsAre("6 (Overflow)"));
}

TEST_F(ConsoleDesktopTest, PoliciesAnswerInOneLine) {
    EXPECT_EQ(Choice(Policy::Next, {"1"}), 1);
    EXPECT_EQ(out_.str(), "program: Error description: 6 (Overflow); Modul: clsX -> wiederholen\n");
    EXPECT_EQ(Choice(Policy::Leave, {"1"}), 2);
    EXPECT_EQ(Choice(Policy::Ask, {}, false), 2);
}

TEST_F(ConsoleDesktopTest, AnInterruptionLeavesWithoutAWord) {
    interrupted_ = true;
    EXPECT_EQ(Choice(Policy::Next, {"1"}), 2);
    EXPECT_EQ(Choice(Policy::Ask, {"1"}), 2);
    EXPECT_EQ(out_.str(), "");
    EXPECT_TRUE(heard_.empty());
}

TEST_F(ConsoleDesktopTest, MessageBoxes) {
    const auto ask = [&](std::deque<std::string> answers, MessageButtons buttons, bool terminal = true) {
        Desktop desktop = Make(Policy::Ask, std::move(answers), terminal);
        const MessageAnswer answer =
            desktop.MessageBox("exists, overwrite ?", "Message", MessageIcon::None, buttons);
        EXPECT_EQ(desktop.MessagesShown(), 1);
        EXPECT_EQ(desktop.FailuresShown(), 0);
        return answer;
    };
    EXPECT_EQ(ask({}, MessageButtons::OK), MessageAnswer::OK);
    EXPECT_EQ(out_.str(), "program: Message: exists, overwrite ?\n");
    EXPECT_EQ(ask({"perhaps", "Ja"}, MessageButtons::YesNo), MessageAnswer::Yes);
    EXPECT_EQ(ask({"n"}, MessageButtons::YesNo), MessageAnswer::No);
    EXPECT_EQ(ask({}, MessageButtons::YesNo), MessageAnswer::No);
    EXPECT_EQ(ask({"y"}, MessageButtons::YesNo, false), MessageAnswer::No);
}

}  // namespace
}  // namespace orvo::console
