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
using testing::StartsWith;

using Lines = std::deque<std::string>;

/// Programs by name and exit code (−1: runs on); a program that is not listed cannot be started.
class Programs : public IProcessRunner {
  public:
    ProcessResult Run(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& /*folder*/, const std::function<bool()>& /*interrupted*/) override {
        document = ReadFile(documentName = arguments.at(0));
        return Start(program, {}, {});
    }
    ProcessResult Start(const std::string& program, const std::vector<std::string>& arguments,
                        std::chrono::milliseconds /*patience*/) override {
        ProcessResult result;
        const auto found = exitCodes.find(program);
        if (found == exitCodes.end()) return result;
        called.push_back(program);
        for (const std::string& argument : arguments) called.back() += " " + argument;
        result.started = true;
        result.exitCode = found->second;
        result.output = "no default\ndestination";
        return result;
    }

    std::map<std::string, int> exitCodes;
    std::vector<std::string> called;
    std::string document, documentName;  ///< that was printed
};

class ConsoleDesktopTest : public testing::Test {
  protected:
    ConsoleDesktopTest() {
        LangOffset() = 10000;
        options.out = &out_;
        options.program = "program";
        options.runner = programs;
        options.browser = "lynx -x %s:other";
        options.log = [] { return std::string("/t/log"); };
        options.read = [this]() -> std::optional<std::string> {
            if (answers_.empty()) return std::nullopt;
            const std::string line = answers_.front();
            answers_.pop_front();
            return line;
        };
    }
    ~ConsoleDesktopTest() override {
        SetErrorDialog(nullptr);
        platform::Install({});
        LangOffset() = 0;
    }

    /// Fails once in a procedure, with a fresh dialog; its user answers with these lines and then ends the
    /// input: 0 where the statement was repeated, 1 where the next one ran, 2 where the procedure was left.
    int Answered(Lines answers) {
        answers_ = std::move(answers);
        out_.str("");
        programs->called.clear();
        platform::Platform platform = world->MakePlatform();
        platform.desktop = std::make_shared<Desktop>(options);
        platform::Install(std::move(platform));
        SetErrorDialog(std::make_unique<Ferrow>());
        int runs = 0;
        bool wentOn = false;
        Procedure<void>({"[basApi] Public Sub Probe()", "basApi", "Probe"}).Run([&](Statements& run) {
            run([&] {
                if (++runs == 1) throw RuntimeError(6, "Over\x1b[2Jflow");
            });
            run([&] { wentOn = true; });
        });
        return runs > 1 ? 0 : wentOn ? 1 : 2;
    }
    std::string Shown() const { return out_.str(); }

    std::shared_ptr<fake::World> world = fake::World::Make();
    std::shared_ptr<Programs> programs = std::make_shared<Programs>();
    DesktopOptions options;

  private:
    std::ostringstream out_;
    Lines answers_;
};

TEST_F(ConsoleDesktopTest, AnswersAreNumbersOrLettersThatOneButtonHas) {
    const struct {
        Integer language;
        Lines answers;
        int expected;
    } kCases[] = {
        {10000, {"1"}, 0},
        {10000, {" 2\r"}, 1},
        {10000, {"", "8", "0", "redo", "x", "3"}, 2},
        {10000, {"R"}, 0},
        {10000, {"c"}, 1},
        {10000, {}, 2},  // the end of input must not repeat a retry for ever
        {0, {"H"}, 0},
        {0, {"n"}, 1},
        {0, {"p"}, 2},
        {20000, {"c", "2"}, 1},  // repeating and going on share the letter
        {20000, {"P"}, 2},
        {10000, {"e", "r"}, 0},  // e-mail and leaving share the letter
    };
    for (const auto& [language, answers, expected] : kCases) {
        LangOffset() = language;
        EXPECT_EQ(Answered(answers), expected) << language << testing::PrintToString(answers) << Shown();
    }
    EXPECT_THAT(Shown(), HasSubstr("Please give the number: 3, 6\n"));
}

TEST_F(ConsoleDesktopTest, ShowsTheWholeFailure) {
    const std::pair<Integer, std::vector<const char*>> kLanguages[] = {
        {10000,
         {"\nWARNING! an error has occured ...\n", "  There is a software problem.",
          "  Error description: 6 (Over?[2Jflow)\n", "  Modul: basApi\n", "  Procedure: Probe\n",
          "  Program infos: Orvo_Tile  V", "  CallStack:\n    14:25:07 [basApi] Public Sub Probe()\n",
          "Error protocoll...\n  4  [P]rint  5  [S]ave  6  EMail  7  [W]WW\n",
          "Continue...\n  1  [R]edo Command\n  2  [C]ontinue with next Command\n  3  Exit Procedure\n"}},
        {0, {"4  [D]rucken  5  [S]peichern  6  [E]Mail  7  [W]WW\n", "2  Fortsetzen mit [n]ächstem Befehl"}},
        {20000,
         {"4  [I]mprimer  5  [S]auver  6  [E]Mail  7  [W]WW\n",
          "1  Commande répèter\n  2  Continuer avec la commande suivante\n"}},
    };
    for (const auto& [language, texts] : kLanguages) {
        LangOffset() = language;
        Answered({"2"});
        for (const char* text : texts) EXPECT_THAT(Shown(), HasSubstr(text));
    }
}

TEST_F(ConsoleDesktopTest, PoliciesAnswerInOneLineAndStillLog) {
    options.policy = Policy::Next;
    EXPECT_EQ(Answered({"1"}), 1);
    EXPECT_THAT(Shown(), testing::MatchesRegex("program: Error description: 6 .*; Modul: basApi; Procedure: "
                                               "Probe; Record No.: [0-9]+ -> Continue with next Command\n"));
    options.policy = Policy::Leave;
    EXPECT_EQ(Answered({"1"}), 2);
    options.policy = Policy::Ask;
    options.interrupted = [] { return true; };
    world->files.clear();
    EXPECT_EQ(Answered({"1"}), 2);
    EXPECT_EQ(Shown(), "");
    EXPECT_THAT(world->files["C:\\Temp\\Orvo_Tile.EPT"], HasSubstr("vom Ferrow"));
    options.read = nullptr;
    EXPECT_EQ(Desktop(options).MessageBox("sure?", "Title", MessageIcon::None, MessageButtons::YesNo),
              MessageAnswer::No);
    EXPECT_THAT(Shown(), StartsWith("program: Title: sure?\n"));
}

TEST_F(ConsoleDesktopTest, PrintsThroughTheSystemsCommandOrSaysWhatToDo) {
    const std::pair<std::map<std::string, int>, const char*> kCases[] = {
        {{{"lpr", 0}}, ""},
        {{{"lp", 1}, {"lpr", 0}}, "482 (Printer error: lp says: no default destination (lpoptions"},
        {{}, "482 (Printer error: there is no lp or lpr; install cups-client"},
    };
    for (const auto& [exitCodes, failure] : kCases) {
        programs->exitCodes = exitCodes;
        EXPECT_EQ(Answered({"p", "1"}), 0) << "the dialog stays and asks again";
        EXPECT_THAT(Shown(), HasSubstr(failure));
        EXPECT_EQ(Shown().find("482") == std::string::npos, *failure == '\0');
        EXPECT_THAT(programs->document, HasSubstr("          Modul:\tbasApi \n"));
        EXPECT_FALSE(std::filesystem::exists(programs->documentName));
    }
}

TEST_F(ConsoleDesktopTest, MailAndWebTakeTheClipboardAndTheUsersProgram) {
    const std::string mail = "mailto:support@example.com";
    const std::string web = "https://www.example.com/support/en";
    programs->exitCodes = {{"xdg-open", 3}, {"lynx", -1}};
    options.clipboard = Clipboard::Tmux;
    Answered({"w", "3"});
    EXPECT_THAT(Shown(), HasSubstr("open this address yourself: " + web + "\n")) << "no display";
    EXPECT_THAT(Shown(), HasSubstr("terminal's clipboard"));
    EXPECT_THAT(Shown(), HasSubstr("\033]52;c;"));

    options.display = true;
    options.clipboard = Clipboard::None;
    Answered({"w", "6", "3"});
    EXPECT_THAT(programs->called, ElementsAre("xdg-open " + web, "lynx -x " + web, "xdg-open " + mail));
    EXPECT_THAT(Shown(), HasSubstr("no clipboard here. The report stands last in /t/log"));
    EXPECT_THAT(Shown(), HasSubstr("open this address yourself: " + mail + "\n")) << "a browser sends none";
    EXPECT_THAT(Shown(), Not(HasSubstr("yourself: " + web)));
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

}  // namespace
}  // namespace orvo::console
