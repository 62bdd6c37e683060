// The error dialog in the terminal: the real dialog over the platform in memory, answered line by line.
#include <gmock/gmock.h>

#include <deque>
#include <sstream>

#include "errorreport/Ferrow.h"
#include "errorreport/Procedure.h"
#include "platform/console/Desktop.h"
#include "platform/fake/World.h"
#include "support/Strings.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::console {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using Lines = std::deque<std::string>;

constexpr ProcedureText kProbe{"[basApi] Public Sub Probe()", "basApi", "Probe"};

/// Programs by name and exit code (−1: runs on); a program that is not listed cannot be started.
class Programs : public IProcessRunner {
  public:
    ProcessResult Run(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& /*folder*/, const std::function<bool()>& /*interrupted*/) override {
        if (!arguments.empty()) document = ReadFile(document_ = arguments.front());
        return End(program);
    }
    ProcessResult Start(const std::string& program, const std::vector<std::string>& arguments,
                        std::chrono::milliseconds /*patience*/) override {
        const ProcessResult result = End(program);
        if (result.started) called.back() += " " + testing::PrintToString(arguments);
        return result;
    }
    bool DocumentIsGone() const { return !std::filesystem::exists(document_); }

    std::map<std::string, int> exitCodes;
    std::vector<std::string> called;
    std::string document;  ///< that was printed

  private:
    ProcessResult End(const std::string& program) {
        ProcessResult result;
        const auto found = exitCodes.find(program);
        if (found == exitCodes.end()) return result;
        called.push_back(program);
        result.started = true;
        result.exitCode = found->second;
        result.output = "no default\ndestination";
        return result;
    }
    std::string document_;
};

class ConsoleDesktopTest : public testing::Test {
  protected:
    ConsoleDesktopTest() { Language(10000); }
    ~ConsoleDesktopTest() override {
        SetErrorDialog(nullptr);
        platform::Install({});
        LangOffset() = 0;
    }

    /// A fresh dialog; its user answers with these lines and then ends the input.
    void Prepare(Lines answers) {
        DesktopOptions options;
        options.out = &out_;
        options.policy = policy_;
        options.program = "program";
        options.interrupted = [this] { return interrupted_; };
        options.runner = programs_;
        options.clipboard = clipboard_;
        options.display = display_;
        options.browser = "lynx -x %s:other";
        options.log = [] { return std::string("/t/log"); };
        if (terminal_) {
            options.read = [answers = std::move(answers)]() mutable -> std::optional<std::string> {
                if (answers.empty()) return std::nullopt;
                std::string line = answers.front();
                answers.pop_front();
                return line;
            };
        }
        out_.str("");
        platform::Platform platform = world_->MakePlatform();
        desktop_ = std::make_shared<Desktop>(std::move(options));
        platform.desktop = desktop_;
        platform::Install(std::move(platform));
        SetErrorDialog(std::make_unique<Ferrow>());
    }

    /// Fails once in a procedure: 0 where the statement was repeated, 1 where the next one ran, 2 where the
    /// procedure was left.
    int Answered(Lines answers) {
        Prepare(std::move(answers));
        return Fail();
    }
    static int Fail() {
        int runs = 0;
        bool wentOn = false;
        Procedure<void>(kProbe).Run([&](Statements& run) {
            run([&] {
                if (++runs == 1) throw RuntimeError(6, "Over\x1b[2Jflow");
            });
            run([&] { wentOn = true; });
        });
        return runs > 1 ? 0 : wentOn ? 1 : 2;
    }
    void Language(Integer offset) { LangOffset() = offset; }
    std::string Shown() const { return out_.str(); }

    std::shared_ptr<fake::World> world_ = fake::World::Make();
    std::shared_ptr<Programs> programs_ = std::make_shared<Programs>();
    std::shared_ptr<Desktop> desktop_;
    std::ostringstream out_;
    Policy policy_ = Policy::Ask;
    Clipboard clipboard_ = Clipboard::None;
    bool terminal_ = true, display_ = false, interrupted_ = false;
};

TEST_F(ConsoleDesktopTest, AnswersAreNumbersOrLettersThatOneButtonHas) {
    const struct {
        Integer language;
        Lines answers;
        int expected;
    } kCases[] = {
        {10000, {"1"}, 0},
        {10000, {" 2\r"}, 1},
        {10000, {"R"}, 0},
        {10000, {"c"}, 1},
        {10000, {"e", "r"}, 0},  // e-mail and leaving share the letter
        {10000, {"", "8", "0", "redo", "x", "3"}, 2},
        {10000, {}, 2},  // the end of input must not repeat a retry for ever
        {0, {"H"}, 0},
        {0, {"n"}, 1},
        {0, {"p"}, 2},
        {20000, {"c", "2"}, 1},  // repeating and going on share the letter
        {20000, {"P"}, 2},
    };
    for (const auto& [language, answers, expected] : kCases) {
        Language(language);
        EXPECT_EQ(Answered(answers), expected) << language << testing::PrintToString(answers) << Shown();
    }
    Language(10000);
    Answered({"e"});
    EXPECT_THAT(Shown(), HasSubstr("Please give the number: 3, 6\n"));
}

TEST_F(ConsoleDesktopTest, ShowsTheWholeFailure) {
    Answered({"2"});
    for (const char* text :
         {"\nWARNING! an error has occured ...\n", "  There is a software problem.",
          "  Error description: 6 (Over?[2Jflow)\n", "  Modul: basApi\n", "  Procedure: Probe\n",
          "  Program infos: Orvo_Tile  V", "  CallStack:\n    14:25:07 [basApi] Public Sub Probe()\n",
          "Error protocoll...\n  4  [P]rint  5  [S]ave  6  EMail  7  [W]WW\n",
          "Continue...\n  1  [R]edo Command\n  2  [C]ontinue with next Command\n  3  Exit Procedure\n"}) {
        EXPECT_THAT(Shown(), HasSubstr(text));
    }
    Language(0);
    Answered({"2"});
    EXPECT_THAT(Shown(), HasSubstr("4  [D]rucken  5  [S]peichern  6  [E]Mail  7  [W]WW\n"));
    EXPECT_THAT(Shown(), HasSubstr("2  Fortsetzen mit [n]ächstem Befehl"));
    Language(20000);
    Answered({"2"});
    EXPECT_THAT(Shown(), HasSubstr("4  [I]mprimer  5  [S]auver  6  [E]Mail  7  [W]WW\n"));
    EXPECT_THAT(Shown(), HasSubstr("1  Commande répèter\n  2  Continuer avec la commande suivante\n"));
}

TEST_F(ConsoleDesktopTest, PoliciesAnswerInOneLineAndStillLog) {
    policy_ = Policy::Next;
    EXPECT_EQ(Answered({"1"}), 1);
    EXPECT_THAT(Shown(), testing::MatchesRegex("program: Error description: 6 .*; Modul: basApi; Procedure: "
                                               "Probe; Record No.: [0-9]+ -> Continue with next Command\n"));
    policy_ = Policy::Leave;
    EXPECT_EQ(Answered({"1"}), 2);
    policy_ = Policy::Ask;
    terminal_ = false;
    EXPECT_EQ(Answered({}), 2);
    interrupted_ = true;
    EXPECT_EQ(Answered({}), 2);
    EXPECT_EQ(Shown(), "");
    const std::string& log = world_->files["C:\\Temp\\Orvo_Tile.EPT"];
    std::size_t reports = 0;
    for (std::size_t at = 0; (at = log.find("vom Ferrow", at)) != std::string::npos; ++at) ++reports;
    EXPECT_EQ(reports, 4U);
}

TEST_F(ConsoleDesktopTest, PrintsThroughTheSystemsCommandOrSaysWhatToDo) {
    const struct {
        std::map<std::string, int> programs;
        std::vector<std::string> called;
        const char* shown;
    } kCases[] = {
        {{{"lp", 0}, {"lpr", 0}}, {"lp"}, ""},
        {{{"lpr", 0}}, {"lpr"}, ""},
        {{{"lp", 1}, {"lpr", 0}}, {"lp"}, "482 (Printer error: lp says: no default destination (lpoptions"},
        {{}, {}, "482 (Printer error: there is no lp or lpr; install cups-client"},
    };
    for (const auto& [programs, called, shown] : kCases) {
        programs_->exitCodes = programs;
        programs_->called.clear();
        EXPECT_EQ(Answered({"p", "4", "3"}), 2) << "the dialog stays and asks again";
        EXPECT_THAT(Shown(), HasSubstr(shown));
        EXPECT_EQ(Shown().find("482") == std::string::npos, *shown == '\0');
        if (!called.empty()) {
            EXPECT_THAT(programs_->called, ElementsAre(called.front(), called.front()));
            EXPECT_THAT(programs_->document, HasSubstr("          Modul:\tbasApi \n"));
        }
        EXPECT_TRUE(programs_->DocumentIsGone());
    }
}

TEST_F(ConsoleDesktopTest, SavesAfterAskingAndShowsFailures) {
    const std::string path = "C:\\Temp\\Orvo_Tile.ERR";
    Answered({"s", "3"});
    EXPECT_THAT(world_->files[path], HasSubstr("Probe"));
    EXPECT_THAT(Shown(), HasSubstr("program: Error protocol was written into '" + path + "'!\n"));
    world_->files[path] = "old";
    Answered({"5", "perhaps", "n", "3"});
    EXPECT_EQ(world_->files[path], "old");
    EXPECT_THAT(Shown(), HasSubstr("program: '" + path + "' exists, overwrite file ?\n[y/n] > [y/n] > "));
    Answered({"5"});  // the input ends at the question
    EXPECT_EQ(world_->files[path], "old");
    Language(0);
    Answered({"S", "Ja", "3"});
    EXPECT_THAT(Shown(), HasSubstr("[j/n] > "));
    EXPECT_THAT(world_->files[path], HasSubstr("Probe"));
    world_->lockedFiles.insert(path);
    EXPECT_EQ(Answered({"s", "j", "2"}), 1);
    EXPECT_THAT(Shown(), HasSubstr("program: 70 (Permission denied: " + path + ")\n"));
}

TEST_F(ConsoleDesktopTest, MailAndWebTakeTheClipboardAndTheUsersProgram) {
    display_ = true;
    const struct {
        Clipboard clipboard;
        const char* report;  ///< what becomes of the report
        std::map<std::string, int> programs;
        const char* answer;
        std::vector<std::string> called;
        const char* shown;
    } kCases[] = {
        {Clipboard::None,
         "no clipboard here. The report stands last in /t/log",
         {{"xdg-open", -1}},
         "6",
         {"xdg-open { \"mailto:support@example.com\" }"},
         "Opening mailto:support@example.com\n"},
        {Clipboard::Terminal,
         "terminal's clipboard",
         {{"xdg-open", 0}},
         "w",
         {"xdg-open { \"https://www.example.com/support/en\" }"},
         "Opening https://"},
        {Clipboard::Tmux,
         "log",
         {{"xdg-open", 3}, {"lynx", -1}},
         "w",
         {"xdg-open { \"https://www.example.com/support/en\" }",
          "lynx { \"-x\", \"https://www.example.com/support/en\" }"},
         "Opening https://"},
        {Clipboard::Screen,
         "log",
         {{"lynx", 0}},
         "6",
         {},
         "open this address yourself: mailto:support@example.com\n"},
    };
    for (const auto& [clipboard, report, programs, answer, called, shown] : kCases) {
        clipboard_ = clipboard;
        programs_->exitCodes = programs;
        programs_->called.clear();
        Answered({answer, "3"});
        EXPECT_THAT(Shown(), HasSubstr(report));
        EXPECT_THAT(Shown(), HasSubstr(shown));
        EXPECT_EQ(programs_->called, called) << Shown();
        EXPECT_EQ(Shown().find("\033]52;c;") != std::string::npos, clipboard != Clipboard::None);
        EXPECT_EQ(Shown().find("yourself") != std::string::npos, called.empty());
    }
    display_ = false;
    Answered({"w"});
    EXPECT_THAT(Shown(), HasSubstr("open this address yourself: https://www.example.com/support/en\n"));
    EXPECT_THAT(Shown(), Not(HasSubstr("Opening")));
}

TEST_F(ConsoleDesktopTest, FrenchMailLacksATextAndEndsThere) {
    Language(20000);
    display_ = true;
    programs_->exitCodes = {{"xdg-open", 0}};
    EXPECT_EQ(Answered({"6", "3"}), 2);
    EXPECT_THAT(Shown(), HasSubstr("program: 326 (Resource with identifier '28008' not found)\n"));
    EXPECT_THAT(Shown(), Not(HasSubstr("/t/log")));
    EXPECT_TRUE(programs_->called.empty());
}

TEST(ConsoleClipboard, SequencesCarryTheText) {
    const std::pair<const char*, const char*> kTexts[] = {
        {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"\xff\xfe\xfd", "//79"}};
    for (const auto& [text, coded] : kTexts)
        EXPECT_EQ(ClipboardSequence(text, Clipboard::Terminal), "\033]52;c;" + std::string(coded) + "\a");
    EXPECT_EQ(ClipboardSequence("f", Clipboard::Tmux),
              "\033]52;c;Zg==\a\033Ptmux;\033\033]52;c;Zg==\a\033\\");
    EXPECT_EQ(ClipboardSequence("f", Clipboard::Screen), "\033P\033]52;c;Zg==\a\033\\");
    const std::string pieces = ClipboardSequence(std::string(900, 'x'), Clipboard::Screen);
    EXPECT_EQ(pieces.find("\033\\\033P"), 514U) << "no piece is longer than screen passes through";
}

TEST_F(ConsoleDesktopTest, MessageBoxesAreTitledOrNamedAfterTheProgram) {
    Prepare({});
    desktop_->MessageBox("one\r\ntwo", "Message", MessageIcon::None, MessageButtons::OK);
    desktop_->MessageBox("text", "", MessageIcon::None, MessageButtons::OK);
    EXPECT_EQ(Shown(), "program: Message: one\ntwo\nprogram: text\n");
    terminal_ = false;
    Prepare({});
    EXPECT_EQ(desktop_->MessageBox("sure?", "", MessageIcon::None, MessageButtons::YesNo), MessageAnswer::No);
}

}  // namespace
}  // namespace orvo::console
