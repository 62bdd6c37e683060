// The terminal as a desktop, and what is its own: the menu, and the clipboard by the terminal's sequences.
#include <array>
#include <deque>

#include "platform/console/Desktop.h"
#include "tests/contracts/DesktopContract.h"

namespace orvo::console {
namespace {

using testing::HasSubstr;

class ConsoleSubject {
  public:
    explicit ConsoleSubject(fake::World& /*world*/) {
        options.out = &out;
        options.program = "program";
        options.clipboard = Clipboard::Terminal;
        options.read = [this]() -> std::optional<std::string> {
            if (lines.empty()) return std::nullopt;
            std::string line = lines.front();
            lines.pop_front();
            return line;
        };
    }
    std::shared_ptr<IDesktop> Desktop() { return std::make_shared<console::Desktop>(options); }
    void Plan(const std::vector<Act>& acts) {
        constexpr std::array kLines{"1", "2", "3", "4", "5", "6", "7", "y", "n"};
        for (const Act act : acts) lines.emplace_back(kLines.at(static_cast<std::size_t>(act)));
    }
    std::string Shown() const { return out.str(); }
    bool ClipboardHolds(const std::string& text) const {
        return Shown().find(ClipboardSequence(text, Clipboard::Terminal)) != std::string::npos;
    }
    static std::string Told(const std::string& number, const std::string& text) {
        return "program: " + number + " (" + text + ")\n";
    }
    std::vector<Unattended> WithoutUser() {
        const auto with = [this](Policy policy, bool terminal, bool interrupted) {
            DesktopOptions changed = options;
            changed.policy = policy;
            if (!terminal) changed.read = nullptr;
            changed.interrupted = [=] { return interrupted; };
            return [=] { return std::make_shared<console::Desktop>(changed); };
        };
        return {{with(Policy::Next, true, false), true},
                {with(Policy::Leave, true, false), false},
                {with(Policy::Ask, true, true), false},
                {with(Policy::Ask, false, false), false},
                {with(Policy::Ask, true, false), false}};  // the input is at its end
    }

    static constexpr Long kPrinting = 482;
    std::ostringstream out;
    std::deque<std::string> lines;  ///< that the user types; then the input ends
    DesktopOptions options;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Console, DesktopContract, ConsoleSubject);
INSTANTIATE_TYPED_TEST_SUITE_P(Console, AttendedDesktop, ConsoleSubject);

struct ConsoleDesktopTest : DialogTest {
    Outcome FailAnd(std::deque<std::string> lines) {
        user.out.str("");
        user.lines = std::move(lines);
        ShowOn(user.Desktop());
        return Fail(1, "R\x1b[2J & D");
    }
    ConsoleSubject user{*world};
};

TEST_F(ConsoleDesktopTest, AnswersAreNumbersOrLettersThatOneButtonHas) {
    constexpr Outcome kRepeated{2, true}, kNext{1, true}, kLeft{1, false};
    const std::tuple<Integer, std::deque<std::string>, Outcome> kCases[] = {
        {10000, {" 2\r"}, kNext},
        {10000, {"", "8", "0", "redo", "x", "3"}, kLeft},
        {10000, {"R"}, kRepeated},
        {10000, {"s", "perhaps"}, kLeft},  // the end of input must not repeat a retry for ever
        {0, {"H"}, kRepeated},
        {0, {"n"}, kNext},
        {0, {"S", "Ja", "p"}, kLeft},
        {20000, {"c", "2"}, kNext},  // repeating and going on share the letter
        {20000, {"P"}, kLeft},
        {10000, {"e", "r"}, kRepeated},  // e-mail and leaving share the letter
    };
    for (const auto& [language, lines, expected] : kCases) {
        LangOffset() = language;
        EXPECT_EQ(FailAnd(lines), expected) << language << testing::PrintToString(lines) << user.Shown();
    }
    EXPECT_THAT(user.Shown(), HasSubstr("Please give the number: 3, 6\n"));
    EXPECT_THAT(saved, HasSubstr("Disk full"));
}

TEST_F(ConsoleDesktopTest, ShowsTheWholeFailureOrOneLine) {
    const std::pair<Integer, const char*> kCases[] = {
        {10000, "\nWARNING! an error has occured ...\n  There is a software problem."},
        {10000,
         "  Error description: 61 (Disk full: R?[2J & D)\n  Modul: Demo\n  Procedure: Cut\n  Record No.: "},
        {10000,
         "\n  CallStack:\n    14:25:07 [Demo] Public Sub Cut()\nError protocoll...\n"
         "  4  [P]rint  5  [S]ave  6  EMail  7  [W]WW\nContinue...\n  1  [R]edo Command\n"},
        {20000, "  1  Commande répèter\n  2  Continuer avec la commande suivante\n"}};
    for (const auto& [language, text] : kCases) {
        LangOffset() = language;
        FailAnd({"2"});
        EXPECT_THAT(user.Shown(), HasSubstr(text));
    }
    user.options.policy = Policy::Leave;
    FailAnd({"2"});
    EXPECT_THAT(user.Shown(), testing::MatchesRegex("program: Description de l'erreur : 61 .*; Module: Demo; "
                                                    "Procédure: Cut; .*: [0-9]+ -> Procédure de sortie\n"));
    user.options.interrupted = [] { return true; };
    FailAnd({"2"});
    EXPECT_EQ(user.Shown(), "") << "the failure is the interruption";
}

TEST_F(ConsoleDesktopTest, ClipboardSequencesCarryTheText) {
    for (const auto& [text, coded] :
         {std::pair("", ""), {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"\xff\xfe\xfd", "//79"}})
        EXPECT_EQ(ClipboardSequence(text, Clipboard::Terminal), "\033]52;c;" + std::string(coded) + "\a");
    EXPECT_EQ(ClipboardSequence("f", Clipboard::Tmux),
              "\033]52;c;Zg==\a\033Ptmux;\033\033]52;c;Zg==\a\033\\");
    EXPECT_EQ(ClipboardSequence("f", Clipboard::Screen), "\033P\033]52;c;Zg==\a\033\\");
    EXPECT_EQ(ClipboardSequence(std::string(900, 'x'), Clipboard::Screen).find("\033\\\033P"), 514U)
        << "no piece is longer than screen passes through";
}

}  // namespace
}  // namespace orvo::console
