// What every desktop does with the error dialog, its reports, and failures in between.
#pragma once

#include <gmock/gmock.h>

#include "errorreport/Ferrow.h"
#include "errorreport/Procedure.h"
#include "platform/fake/World.h"
#include "support/Strings.h"
#include "tests/Failure.h"

namespace orvo {

/// What is left of a failing procedure: how often its statement ran, and whether the next one did.
struct Outcome {
    int runs = 0;
    bool next = false;
    bool operator==(const Outcome&) const = default;
};

struct DialogTest : testing::Test {
    DialogTest() { LangOffset() = 10000; }
    ~DialogTest() override {
        SetErrorDialog(nullptr);
        platform::Install({});
        LangOffset() = 0;
    }
    /// Begins with a dialog that was never shown, on this desktop.
    void ShowOn(std::shared_ptr<IDesktop> desktop) const {
        platform::Platform made = world->MakePlatform();
        made.desktop = std::move(desktop);
        platform::Install(std::move(made));
        SetErrorDialog(std::make_unique<Ferrow>());
    }
    /// Has the first runs of a statement fail.
    static Outcome Fail(int failures = 1, const std::string& about = "R & D") {
        Outcome outcome;
        Procedure<void>({"[Demo] Public Sub Cut()", "Demo", "Cut"}).Run([&](Statements& run) {
            run([&] {
                if (++outcome.runs <= failures) throw RuntimeError(Fault::DiskFull, about);
            });
            outcome.next = true;
        });
        return outcome;
    }

    const std::shared_ptr<fake::World> world = fake::World::Make();
    std::string& log = world->files["C:\\Temp\\Orvo_Tile.EPT"];
    std::string& saved = world->files["C:\\Temp\\Orvo_Tile.ERR"] = "old";
};

/// What the user does: the dialog's buttons, and answers to a question.
enum class Act { Retry, Next, Leave, Print, Save, Mail, Web, Yes, No };

/// A way to answer without a user, and whether a failing procedure then goes on.
struct Unattended {
    std::function<std::shared_ptr<IDesktop>()> desktop;
    bool goesOn;
};

/// Has something happen while the n-th report of a showing is made: the first is that for the log, the second
/// that of a button.
struct EventfulSystem final : IOperatingSystem {
    std::string TempFolder() override { return "C:\\Temp"; }
    OSVersion GetVersion() override { return --report == 0 ? event(), OSVersion() : OSVersion(); }
    int report = 0;
    std::function<void()> event;
};

/// A subject is made from the world and has Desktop(), WithoutUser() with ways to answer unattended,
/// ClipboardHolds(text), and kPrinting, the number that printing fails with.
template <class Subject>
struct DesktopContract : DialogTest {
    void Begin(std::shared_ptr<IDesktop> desktop, int report, std::function<void()> event) {
        ShowOn(std::move(desktop));
        platform::Platform made = platform::Current();
        const auto system = std::make_shared<EventfulSystem>();
        system->report = report, system->event = std::move(event);
        made.operatingSystem = system;
        platform::Install(std::move(made));
    }
    Subject subject{*world};
};

/// Here a subject also has Plan(acts), report buttons with the answer to their question and then a choice,
/// Shown() with all messages and addresses that came to the user, and Told(number, text), a handler's failure
/// as shown.
template <class Subject>
struct AttendedDesktop : DesktopContract<Subject> {
    AttendedDesktop() { this->ShowOn(subject.Desktop()); }
    Outcome FailAnd(const std::vector<Act>& acts) {
        subject.Plan(acts);
        return this->Fail();
    }
    void ExpectShown(const std::string& text) { EXPECT_THAT(subject.Shown(), testing::HasSubstr(text)); }
    using DesktopContract<Subject>::subject;
};

TYPED_TEST_SUITE_P(DesktopContract);
TYPED_TEST_SUITE_P(AttendedDesktop);

TYPED_TEST_P(DesktopContract, AnswersWithoutAUserAndNeverWaits) {
    for (const auto& [make, goesOn] : this->subject.WithoutUser()) {
        for (const Integer language : {Integer{10000}, Integer{30000}}) {
            LangOffset() = 10000;
            this->log.clear();
            const auto desktop = make();
            // A language without texts: the window's activation fails.
            this->Begin(desktop, 1, [=] { LangOffset() = language; });
            EXPECT_EQ(this->Fail(), (Outcome{1, goesOn}));
            EXPECT_THAT(this->log, testing::HasSubstr("61 (Disk full: R & D)"));
            EXPECT_EQ(desktop->MessageBox("?", "", MessageIcon::None, MessageButtons::YesNo),
                      MessageAnswer::No);
        }
    }
}

TYPED_TEST_P(DesktopContract, CopiesTextsAndSaysWhereThereIsNoPrinter) {
    const std::string text = "Grüße\r\n\"€\"";
    this->subject.Desktop()->CopyToClipboard(text);
    EXPECT_TRUE(this->subject.ClipboardHolds(text));
    EXPECT_EQ(NumberOf([&] { this->subject.Desktop()->Print({"line"}); }), this->subject.kPrinting);
}

TYPED_TEST_P(AttendedDesktop, SaveAsksBeforeItReplaces) {
    EXPECT_EQ(this->FailAnd({Act::Save, Act::No, Act::Next}), (Outcome{1, true}));
    EXPECT_EQ(this->saved, "old");
    this->ExpectShown("'C:\\Temp\\Orvo_Tile.ERR' exists, overwrite file ?");
    EXPECT_THAT(this->subject.Shown(), testing::Not(testing::HasSubstr("was written into")));
    EXPECT_EQ(this->FailAnd({Act::Save, Act::Yes, Act::Leave}), (Outcome{1, false}));
    EXPECT_THAT(this->saved, testing::HasSubstr("\t61 (Disk full: R & D)\r\n"));
    this->ExpectShown("was written into 'C:\\Temp\\Orvo_Tile.ERR'");
}

TYPED_TEST_P(AttendedDesktop, MailAndWebHandOnWhatIsLogged) {
    this->FailAnd({Act::Leave});  // its activation brings the texts of the report
    for (const auto& [act, address] :
         {std::pair(Act::Mail, "mailto:support@example.com"), {Act::Web, "www.example.com/support/en"}}) {
        this->log.clear();
        EXPECT_EQ(this->FailAnd({act, Act::Leave}), (Outcome{1, false}));
        EXPECT_TRUE(this->subject.ClipboardHolds(this->log.substr(0, this->log.size() - 2)));
        this->ExpectShown(address);
        this->ExpectShown("All error information are copied to the clipboard");
    }
}

TYPED_TEST_P(AttendedDesktop, EveryExceptionOfAHandlerIsToldAndTheDialogStays) {
    const std::tuple<void (*)(), const char*, const char*> cases[] = {
        {[] { throw RuntimeError(Fault::ResourceNotFound, "8007"); }, "326", "Resource not found: 8007"},
        {[] { throw 3; }, "440", "Automation error"},
    };
    for (const auto& [raise, number, text] : cases) {
        this->Begin(this->subject.Desktop(), 2, raise);
        EXPECT_EQ(this->FailAnd({Act::Web, Act::Next}), (Outcome{1, true}));
        this->ExpectShown(this->subject.Told(number, text));
    }
}

TYPED_TEST_P(AttendedDesktop, AFailureWhileOneIsShownReachesTheCallerOfTheSecond) {
    Long second = 0;
    this->Begin(this->subject.Desktop(), 2, [&] { second = NumberOf([] { DialogTest::Fail(); }); });
    EXPECT_EQ(this->FailAnd({Act::Web, Act::Next}), (Outcome{1, true}));
    EXPECT_EQ(second, 400);
    EXPECT_EQ(this->FailAnd({Act::Leave}), (Outcome{1, false})) << "shown again once the first is closed";
}

REGISTER_TYPED_TEST_SUITE_P(DesktopContract, AnswersWithoutAUserAndNeverWaits,
                            CopiesTextsAndSaysWhereThereIsNoPrinter);
REGISTER_TYPED_TEST_SUITE_P(AttendedDesktop, SaveAsksBeforeItReplaces, MailAndWebHandOnWhatIsLogged,
                            EveryExceptionOfAHandlerIsToldAndTheDialogStays,
                            AFailureWhileOneIsShownReachesTheCallerOfTheSecond);

}  // namespace orvo
