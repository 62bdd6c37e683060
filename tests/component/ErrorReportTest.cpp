// The error dialog's layout, its report, and the four ways to hand the report on.
#include <fstream>

#include "errorreport/Report.h"
#include "tests/component/Fixture.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// The report as given, in one language or with the captions of the design.
std::string Golden(const std::string& name) {
    std::ifstream file(ORVO_GOLDEN_REPORTS + name + ".txt");
    std::string text;
    for (std::string line; std::getline(file, line);) text += line + "\r\n";
    return text;
}

struct ErrorReportTest : ComponentTest {
    ErrorReportTest() { NewDialog(); }
    void NewDialog() {
        SetErrorDialog(std::make_unique<Ferrow>());
        Dialog().SetProgInfo("Kachelkarte 7");
    }
    /// Fails as often as the statement is run, and clicks these report buttons at each showing. Gives the
    /// texts of the messages that came up.
    std::vector<std::string> Fail(std::vector<Integer> buttons = {}) {
        world->reportClicks = std::move(buttons);
        Procedure<void>({"[Demo] Public Sub Cut()", "Demo", "Cut"}).Run([](Statements& run) {
            run([] { throw RuntimeError(Fault::DiskFull, "R & D"); }, 4711);
        });
        std::vector<std::string> texts;
        for (const auto& message : std::exchange(world->messages, {}))
            texts.push_back(message.title + message.text);
        return texts;
    }
    std::string& Log() { return world->files["C:\\Temp\\Orvo_Tile.EPT"]; }
};

TEST_F(ErrorReportTest, LogHoldsOneReportPerShowingTheFirstWithTheDesignCaptions) {
    const std::pair<const char*, Integer> languages[] = {
        {"German", 0}, {"English", 10000}, {"French", 20000}};
    const std::string first = Golden("design") + "\r\n";
    for (const auto& [name, offset] : languages) {
        NewDialog();
        LangOffset() = offset;
        Log().clear();
        std::vector<std::string> logs;
        world->answer = [&](const FailureView&) {
            logs.push_back(Log());
            return logs.size() == 1 ? kRetry : kLeave;
        };
        Fail();
        EXPECT_THAT(logs, ElementsAre(first, first + Golden(name) + "\r\n")) << "before the window shows";
    }
}

TEST_F(ErrorReportTest, UnknownSystemFamilyTakesItsLineEndAlongAndTheListIsCutAtTwenty) {
    CallStackList entries;
    for (int i = 0; i < 25; ++i) entries.PushFront("entry " + std::to_string(i));
    const std::string text =
        ReportText(Ferrow().Controls(), entries, {{}, {6, 12, 0, 4, std::string("SP\0rest", 7)}});
    EXPECT_THAT(text, HasSubstr("\r\n          Plattform:\t          Version:\t6.12\r\n"
                                "          Build:\t0   SP\r\n"));
    EXPECT_THAT(text, HasSubstr("CALLSTACK:\r\n          entry 24\r\n"));
    EXPECT_THAT(text, HasSubstr("          entry 5\r\n-----"));
}

TEST_F(ErrorReportTest, PrinterLinesBreakBetweenWordsAfterSeventyThreeCharacters) {
    const std::string seventy = "123456789 123456789 123456789 123456789 123456789 123456789 123456789 ";
    const std::string blanks(20, ' ');
    const std::string longWord(90, 'x');
    const std::string umlauts = "ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ä ";
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {seventy + "ab", {seventy + "ab "}},  // 73 with its blank
        {seventy + "abc", {seventy, blanks + "abc "}},
        {longWord + "\r\n\r\na\tb", {longWord + " ", " ", "a\tb "}},
        {"a " + longWord + " b", {"a ", blanks + longWord + " ", blanks + "b "}},
        {umlauts, {umlauts + " "}},  // 73 characters, not bytes
    };
    for (const auto& [text, lines] : cases) EXPECT_EQ(PrinterLines(text + "\r\nno line end"), lines);
}

TEST_F(ErrorReportTest, FramesAreStackedInTheMiddleOfTheScreenAtEveryShowing) {
    world->screen = {0, 0, 20000, 10001};
    for (int showing = 0; showing < 2; ++showing) {
        Fail();
        const Form& form = Dialog().Controls();
        EXPECT_EQ(form.self.box, (Box{(20000 - 7215) / 2, 2016 /* 2015.5 */, 7215, 5970}));
        Long y = 0;
        for (const char* name :
             {"framComment", "framFehler", "framProgInfo", "framProtocol", "framCallStack", "framContinue"})
            EXPECT_EQ(form.At(name).box.top, std::exchange(y, y + form.At(name).box.height)) << name;
        EXPECT_EQ(y, 5970);
    }
}

TEST_F(ErrorReportTest, TheNoticeNamesTheContactThatTheLastActivationFound) {
    const StringRow company[] = {{1, "ACME"}};
    Fail();
    AddedRows() = company;
    Fail();
    LangOffset() = 20000;
    Fail();
    AddedRows() = {};
    EXPECT_THAT(world->failures[0].comment, HasSubstr(" Support von   wenden sollten. "));
    EXPECT_THAT(world->failures[1].comment, testing::Not(HasSubstr("ACME")));
    EXPECT_THAT(world->failures[2].comment, HasSubstr(" technique de ACME . Veuillez "));
    EXPECT_THAT(world->failures[2].comment, HasSubstr(" faxer à+49 30 23125 000, ou "));
    EXPECT_EQ(world->beeps, 3);
}

TEST_F(ErrorReportTest, PrintWebMailAndSaveHandTheReportOn) {
    const std::string report = Golden("German");
    world->tempFolder = "C:\\Temp\\";
    EXPECT_THAT(
        Fail({0, 3, 1}),
        ElementsAre("Das Fehlerprotokoll wurde in die Datei 'C:\\Temp\\Orvo_Tile.ERR' geschrieben !"));
    EXPECT_THAT(world->printed, ElementsAre(PrinterLines(report + "\r\n")));
    EXPECT_EQ(world->clipboard, report);
    EXPECT_EQ(world->files["C:\\Temp\\Orvo_Tile.ERR"], report + "\r\n");
    NewDialog();
    const StringRow mail[] = {{19106, "  help@example.org "}};
    AddedRows() = mail;
    LangOffset() = 10000;
    EXPECT_THAT(
        Fail({2}),
        ElementsAre("All error information are copied to the clipboard\r\n.\r\n\r\n"
                    "Please insert the content of the clipboard to your email\r\nby pressing [Ctrl] [V]. "
                    "You can also use the command 'Insert' on the menu 'Edit'.\r\n."));
    AddedRows() = {};
    EXPECT_EQ(world->clipboard, Golden("English"));
    EXPECT_THAT(world->opened, ElementsAre("https://www.example.com/support/de", "mailto:help@example.org"));
}

TEST_F(ErrorReportTest, LogThatCannotBeWrittenIsAFailureOfTheCallAndNothingIsShown) {
    world->tempFolder = "";
    EXPECT_EQ(FailureOf([&] { Fail(); }), "76 Path not found: \\Orvo_Tile.EPT");
    EXPECT_TRUE(world->failures.empty() && world->beeps == 0);
}

}  // namespace
}  // namespace orvo
