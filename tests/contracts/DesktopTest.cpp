// What every desktop does with the error dialog, its reports, and failures in between.
#include <new>
#include <stdexcept>

#include "tests/Failure.h"
#include "tests/contracts/Desktop.h"

namespace orvo {
namespace {

using testing::HasSubstr;

/// Has something happen while the n-th report of a showing is made: the first is that for the log, the second
/// that of a button.
class EventfulSystem final : public IOperatingSystem {
  public:
    EventfulSystem(int report, std::function<void()> event) : report_(report), event_(std::move(event)) {}
    std::string TempFolder() override { return "C:\\Temp"; }
    OSVersion GetVersion() override {
        if (--report_ == 0) event_();
        return {};
    }

  private:
    int report_;
    std::function<void()> event_;
};

class DesktopContract : public DialogTest, public testing::WithParamInterface<NamedDesktop> {
  protected:
    void Begin(std::shared_ptr<IDesktop> desktop, int report, std::function<void()> event) {
        ShowOn(std::move(desktop));
        platform::Platform made = platform::Current();
        made.operatingSystem = std::make_shared<EventfulSystem>(report, std::move(event));
        platform::Install(std::move(made));
    }
    const std::unique_ptr<DesktopSubject> subject = GetParam().make(*world);
};

class AttendedDesktop : public DesktopContract {
  protected:
    void SetUp() override {
        if (!subject->attended) GTEST_SKIP() << "there is no screen";
        ShowOn(subject->Desktop());
    }
    Outcome FailAnd(const std::vector<Act>& acts) {
        subject->Plan(acts);
        return Fail();
    }
};

TEST_P(DesktopContract, AnswersWithoutAUserAndNeverWaits) {
    for (const auto& [make, goesOn] : subject->WithoutUser()) {
        for (const Integer language : {Integer{10000}, Integer{30000}}) {
            LangOffset() = 10000;
            log.clear();
            const auto desktop = make();
            // A language without texts: the window's activation fails.
            Begin(desktop, 1, [=] { LangOffset() = language; });
            EXPECT_EQ(Fail(), (Outcome{1, goesOn}));
            EXPECT_THAT(log, HasSubstr("61 (Disk full: R & D)"));
            EXPECT_EQ(desktop->MessageBox("?", "", MessageIcon::None, MessageButtons::YesNo),
                      MessageAnswer::No);
        }
    }
}

TEST_P(DesktopContract, CopiesTextsAndSaysWhereThereIsNoPrinter) {
    const std::string text = "Grüße\r\n\"€\"";
    subject->Desktop()->CopyToClipboard(text);
    EXPECT_TRUE(subject->ClipboardHolds(text));
    EXPECT_EQ(NumberOf([&] { subject->Desktop()->Print({"line"}); }), subject->printing);
}

TEST_P(AttendedDesktop, EachChoiceHasItsEnd) {
    EXPECT_EQ(FailAnd({Act::Retry}), (Outcome{2, true}));
    EXPECT_EQ(FailAnd({Act::Next}), (Outcome{1, true}));
    EXPECT_EQ(FailAnd({Act::Leave}), (Outcome{1, false}));
}

TEST_P(AttendedDesktop, SaveAsksBeforeItReplaces) {
    EXPECT_EQ(FailAnd({Act::Save, Act::No, Act::Next}), (Outcome{1, true}));
    EXPECT_EQ(saved, "old");
    EXPECT_THAT(subject->Shown(), HasSubstr("'C:\\Temp\\Orvo_Tile.ERR' exists, overwrite file ?"));
    EXPECT_THAT(subject->Shown(), testing::Not(HasSubstr("was written into")));
    EXPECT_EQ(FailAnd({Act::Save, Act::Yes, Act::Leave}), (Outcome{1, false}));
    EXPECT_THAT(saved, HasSubstr("\t61 (Disk full: R & D)\r\n"));
    EXPECT_THAT(subject->Shown(), HasSubstr("was written into 'C:\\Temp\\Orvo_Tile.ERR'"));
}

TEST_P(AttendedDesktop, MailAndWebHandOnWhatIsLogged) {
    FailAnd({Act::Leave});  // its activation brings the texts of the report
    for (const auto& [act, address] :
         {std::pair(Act::Mail, "mailto:support@example.com"), {Act::Web, "www.example.com/support/en"}}) {
        log.clear();
        EXPECT_EQ(FailAnd({act, Act::Leave}), (Outcome{1, false}));
        EXPECT_TRUE(subject->ClipboardHolds(log.substr(0, log.size() - 2)));
        EXPECT_THAT(subject->Shown(), HasSubstr(address));
        EXPECT_THAT(subject->Shown(), HasSubstr("All error information are copied to the clipboard"));
    }
}

TEST_P(AttendedDesktop, EveryExceptionOfAHandlerIsToldAndTheDialogStays) {
    const struct {
        void (*raise)();
        const char *number, *text;
    } cases[] = {
        {[] { throw RuntimeError(Fault::ResourceNotFound, "8007"); }, "326", "Resource not found: 8007"},
        {[] { throw std::bad_alloc(); }, "7", "Out of memory"},
        {[] { throw std::invalid_argument("odd"); }, "440", "odd"},
        {[] { throw 3; }, "440", "Automation error"},
    };
    for (const auto& [raise, number, text] : cases) {
        Begin(subject->Desktop(), 2, raise);
        EXPECT_EQ(FailAnd({Act::Web, Act::Next}), (Outcome{1, true}));
        EXPECT_THAT(subject->Shown(), HasSubstr(subject->Told(number, text)));
    }
}

TEST_P(AttendedDesktop, AFailureWhileOneIsShownReachesTheCallerOfTheSecond) {
    Long second = 0;
    Begin(subject->Desktop(), 2, [&] { second = NumberOf([] { Fail(); }); });
    EXPECT_EQ(FailAnd({Act::Web, Act::Next}), (Outcome{1, true}));
    EXPECT_EQ(second, 400);
    EXPECT_EQ(FailAnd({Act::Leave}), (Outcome{1, false})) << "shown again once the first is closed";
}

std::string NameOfDesktop(const testing::TestParamInfo<NamedDesktop>& info) {
    return info.param.name;
}
INSTANTIATE_TEST_SUITE_P(All, DesktopContract, testing::ValuesIn(Desktops()), NameOfDesktop);
INSTANTIATE_TEST_SUITE_P(All, AttendedDesktop, testing::ValuesIn(Desktops()), NameOfDesktop);

}  // namespace
}  // namespace orvo
