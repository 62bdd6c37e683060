// What every desktop does for the error dialog. Include it once in a program that instantiates
// DesktopContract.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "errorreport/Ferrow.h"
#include "platform/dialog/Answers.h"

namespace orvo {

/// A desktop, and what its user does. Members that a desktop has nothing for stay empty.
struct DesktopSubject {
    std::shared_ptr<IDesktop> desktop;
    /// The user will click these report buttons, then this choice.
    std::function<void(std::vector<Integer> reports, Integer choice)> plan;
    /// What was told since the last call.
    std::function<std::string()> told;
    /// From now on nobody is asked: one of the two other policies answers.
    std::function<void(dialog::Policy)> answerBy;
};

/// A dialog that notes what it hears, and whose handlers fail as told.
class NotingDialog final : public IDialogEvents {
  public:
    std::string heard;
    std::function<void()> onActivate = [] {}, onReport = [] {};

    NotingDialog() { form_.self.visible = true; }
    const Form& Controls() const override { return form_; }
    void Form_Activate() override {
        if (!heard.starts_with('a')) heard += 'a';  // windows may activate more than once
        onActivate();
    }
    void cmdContinue_Click(Integer index) override {
        heard += std::to_string(index);
        form_.self.visible = false;
    }
    void cmdProtocol_Click(Integer index) override {
        heard += static_cast<char>('p' + index);
        onReport();
    }

  private:
    Form form_ = Ferrow().Controls();
};

class DesktopContract : public testing::TestWithParam<DesktopSubject (*)()> {
  protected:
    DesktopSubject subject = GetParam()();
    IDesktop& desktop = *subject.desktop;
};
/// Of desktops that a policy can answer for.
class UnaskedDesktopContract : public DesktopContract {};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DesktopContract);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(UnaskedDesktopContract);

TEST_P(DesktopContract, AFailingHandlerIsToldByNumberAndEndsAlone) {
    const std::pair<std::function<void()>, std::vector<std::string>> faults[] = {
        {[] {}, {}},
        {[] { throw RuntimeError(Fault::PermissionDenied, "R & D"); }, {"70", "Permission denied: R & D"}},
        {[] { throw std::bad_alloc(); }, {"7", "Out of memory"}},
        {[] { throw std::logic_error("odd"); }, {"440", "odd"}},
        {[] { throw 3; }, {"440", "Automation error"}},
    };
    for (const auto& [fault, texts] : faults) {
        for (const Integer choice : {dialog::kRetry, dialog::kNextStatement, dialog::kLeaveProcedure}) {
            NotingDialog shown;
            shown.onReport = fault;
            subject.plan({0, 3}, choice);
            desktop.ShowModal(shown);
            EXPECT_EQ(shown.heard, "aps" + std::to_string(choice)) << "the dialog stays until a choice";
            const std::string told = subject.told();
            for (const std::string& text : texts) EXPECT_THAT(told, testing::HasSubstr(text));
        }
    }
    NotingDialog unprepared;
    unprepared.onActivate = [] { throw RuntimeError(Fault::ResourceNotFound); };
    subject.plan({}, dialog::kNextStatement);
    desktop.ShowModal(unprepared);
    EXPECT_EQ(unprepared.heard, "a1");
    EXPECT_THAT(subject.told(), testing::HasSubstr("326"));
}

TEST_P(UnaskedDesktopContract, WhereNobodyIsAskedTheChoiceIsMadeWhateverFails) {
    for (const auto& [policy, heard] :
         {std::pair{dialog::Policy::Next, "a1"}, std::pair{dialog::Policy::Leave, "a2"}}) {
        subject.answerBy(policy);
        for (const bool fails : {false, true}) {
            NotingDialog unseen;
            if (fails) unseen.onActivate = [] { throw RuntimeError(Fault::DeviceIOError); };
            desktop.ShowModal(unseen);
            EXPECT_EQ(unseen.heard, heard);
        }
        EXPECT_EQ(desktop.MessageBox("t", "", MessageIcon::Critical, MessageButtons::OK), MessageAnswer::OK);
        EXPECT_EQ(desktop.MessageBox("t", "", MessageIcon::None, MessageButtons::YesNo), MessageAnswer::No);
    }
}

}  // namespace orvo
