// The error dialog's layout, its report, and the four ways to hand the report on.
#include "errorreport/Report.h"
#include "errorreport/Version.h"
#include "tests/component/Fixture.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr ProcedureText kWork{"[mod] Public Sub Work()", "mod", "Work"};

/// The captions that the language changes in a report.
struct Captions {
    Integer offset;
    const char* program;
    const char* failure;
    std::array<const char*, 4> rows;
};

constexpr Captions kDesign{
    -1, "PROGRAMM-INFOS:", "FEHLERBESCHREIBUNG:", {"Fehler-Nr:", "Modul:", "Prozedur:", "Zeilen-Nr.:"}};
constexpr Captions kLanguages[] = {
    {0,
     "PROGRAMM - INFOS:",
     "FEHLERBESCHREIBUNG:",
     {"Fehlerbeschreibung:", "Modul:", "Prozedur:", "Zeilen-Nr.:"}},
    {10000,
     "PROGRAM INFOS:",
     "ERROR DESCRIPTION:",
     {"Error description:", "Modul:", "Procedure:", "Record No.:"}},
    {20000,
     "INFORMATION PROGRAMME :",
     "DESCRIPTION DE L'ERREUR :",
     {"Description de l'erreur :", "Module:", "Procédure:", "Ligne N°. :"}},
};

class ErrorReportTest : public ComponentTest {
  protected:
    /// Fails once, at the line that `line` names, and goes on as the answer says.
    void Fail() {
        Procedure<void>(kWork).Run([&](Statements& run) {
            line = __LINE__ + 1;
            run([] { throw RuntimeError(Fault::Overflow); });
        });
    }
    /// Fails, and clicks these report buttons while the dialog is shown.
    void FailAndClick(std::vector<Integer> buttons) {
        world->reportClicks = std::move(buttons);
        world->eventFailures.clear();
        Fail();
    }
    std::string& Log() { return world->files["C:\\Temp\\Orvo_Tile.EPT"]; }
    const Form& Shown() { return dynamic_cast<Ferrow&>(GlobalErrorDialog()).Controls(); }

    std::string Golden(const Captions& captions, int entries) const {
        const std::string separator = std::string(70, '-') + "\r\n";
        const std::string indent = "          ";
        const std::string version = std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) +
                                    "." + std::to_string(kVersionRevision);
        const std::array<std::string, 4> values{"6 (Overflow)", "mod", "Work", std::to_string(line)};
        std::string text = separator + "F E H L E R P R O T O K O L L vom Ferrow\r\n" + separator +
                           captions.program + "\r\n" + indent + "Orvo_Tile  V" + version + "\r\n" +
                           separator + captions.failure + "\r\n";
        for (std::size_t i = 0; i < values.size(); ++i)
            text += indent + captions.rows[i] + "\t" + values[i] + "\r\n";
        text += indent + "Datum/Uhrzeit:\t03-09-2024 / 14:25:07\r\n" + separator + "CALLSTACK:\r\n";
        for (int i = 0; i < entries; ++i) text += indent + "14:25:07 [mod] Public Sub Work()\r\n";
        return text + separator + "SYSTEMINFO:\r\n" + indent + "Plattform:\tWindows NT\r\n" + indent +
               "Version:\t6.1\r\n" + indent + "Build:\t7601   Service Pack 1\r\n" + separator;
    }

    int line = 0;
};

TEST_F(ErrorReportTest, LogHoldsOneReportPerShowingTheFirstWithTheDesignCaptions) {
    for (const Captions& language : kLanguages) {
        SCOPED_TRACE(language.offset);
        SetErrorDialog(std::make_unique<Ferrow>());
        LangOffset() = language.offset;
        Log().clear();
        world->answer = [&](const FailureView&) {
            EXPECT_EQ(Log(), Golden(kDesign, 1) + "\r\n") << "the log is written before the window shows";
            return kLeave;
        };
        Fail();
        Answer({kRetry, kLeave});
        Fail();
        EXPECT_EQ(Log(),
                  Golden(kDesign, 1) + "\r\n" + Golden(language, 2) + "\r\n" + Golden(language, 2) + "\r\n");
    }
}

TEST_F(ErrorReportTest, UnknownSystemFamilyTakesItsLineEndAlongAndTheListIsCutAtTwenty) {
    CallStackList entries;
    for (int i = 0; i < 25; ++i) entries.PushFront("entry " + std::to_string(i));
    const std::string text =
        ReportText(Ferrow().Controls(), entries, {{}, {6, 12, 0, 4, std::string("SP\0rest", 7)}});
    EXPECT_THAT(text, testing::HasSubstr("\r\n          Plattform:\t          Version:\t6.12\r\n"
                                         "          Build:\t0   SP\r\n"));
    EXPECT_THAT(text, testing::HasSubstr("CALLSTACK:\r\n          entry 24\r\n"));
    EXPECT_THAT(text, testing::HasSubstr("          entry 5\r\n-----"));
}

TEST_F(ErrorReportTest, PrinterLinesBreakBetweenWordsAfterSeventyThreeCharacters) {
    const std::string ten = "123456789 ";
    const std::string blanks(20, ' ');
    const auto times = [](int count, const std::string& word) {
        std::string all;
        for (int i = 0; i < count; ++i) all += word;
        return all;
    };
    EXPECT_THAT(PrinterLines(times(10, ten) + "\r\n"),
                ElementsAre(times(7, ten), blanks + times(3, ten) + " "));
    EXPECT_THAT(PrinterLines(times(7, ten) + "ab\r\n"), ElementsAre(times(7, ten) + "ab "))
        << "73 with its blank";
    EXPECT_THAT(PrinterLines(times(7, ten) + "abc\r\n"), ElementsAre(times(7, ten), blanks + "abc "));
    EXPECT_THAT(PrinterLines(std::string(90, 'x') + "\r\n\r\na\tb\r\nrest"),
                ElementsAre(std::string(90, 'x') + " ", " ", "a\tb "))
        << "a long word, an empty line, a tab, and text without its line end";
    EXPECT_THAT(PrinterLines("a " + std::string(90, 'x') + " b\r\n"),
                ElementsAre("a ", blanks + std::string(90, 'x') + " ", blanks + "b "));
    EXPECT_THAT(PrinterLines(times(36, "ä ") + "\r\n"), ElementsAre(times(36, "ä ") + " "))
        << "73 characters, not bytes";
}

TEST_F(ErrorReportTest, FramesAreStackedInTheMiddleOfTheScreenAndTheFirstNoticeLacksTheContact) {
    world->screen = {0, 0, 20000, 10001};
    Fail();
    EXPECT_EQ(
        world->failures[0].comment,
        "Es liegt ein Problem vor, mit dem Sie sich an den technischen Support von   wenden sollten. Bitte "
        "drucken Sie den Fehlerreport und faxen ihn anoder benutzen Sie die EMail-Funktion. Weitere Hinweise "
        "sowie Updates finden Sie im Internet (WWW).");
    const Form& form = Shown();
    EXPECT_EQ(form.self.box, (Box{(20000 - 7215) / 2, 2016 /* 2015.5 */, 7215, 5970}));
    Long y = 0;
    for (const char* name :
         {"framComment", "framFehler", "framProgInfo", "framProtocol", "framCallStack", "framContinue"}) {
        EXPECT_EQ(form.At(name).box.left, 0) << name;
        EXPECT_EQ(form.At(name).box.top, y) << name;
        y += form.At(name).box.height;
    }
    EXPECT_EQ(y, 5970);
    EXPECT_TRUE(form.At("cmdContinue", 2).visible);
    EXPECT_FALSE(form.At("cmdContinue", 3).visible);
    EXPECT_FALSE(form.self.visible);

    const StringRow company[] = {{1, "ACME"}};
    AddedRows() = company;
    Fail();
    LangOffset() = 20000;
    Fail();
    AddedRows() = {};
    EXPECT_EQ(form.self.box, (Box{(20000 - 7215) / 2, 2016 /* 2015.5 */, 7215, 5970}));
    EXPECT_THAT(world->failures[1].comment, testing::Not(testing::HasSubstr("ACME")))
        << "filled when that window was activated";
    EXPECT_EQ(
        world->failures[2].comment,
        "Il y a un problème logiciel. Veuillez appeler le support technique de ACME . Veuillez imprimer le "
        "rapport d'erreur et nous le faxer à+49 30 23125 000, ou par E-Mail. Pour plus d'informations et des "
        "mises à jour, allez sur Internet (www).");
    EXPECT_EQ(world->beeps, 3);
}

TEST_F(ErrorReportTest, PrintWebAndMailHandTheReportOn) {
    FailAndClick({0, 3});
    const std::string report = Golden(kLanguages[0], 1);
    EXPECT_THAT(world->printed, ElementsAre(PrinterLines(report + "\r\n")));
    EXPECT_EQ(world->clipboard, report);
    EXPECT_THAT(world->opened, ElementsAre("https://www.example.com/support/de"));
    EXPECT_THAT(world->messages, IsEmpty());

    const StringRow mail[] = {{19106, "  help@example.org "}};
    AddedRows() = mail;
    LangOffset() = 10000;
    FailAndClick({2});
    AddedRows() = {};
    EXPECT_EQ(world->clipboard, Golden(kLanguages[1], 2));
    EXPECT_EQ(world->opened.back(), "mailto:help@example.org");
    ASSERT_THAT(world->messages, SizeIs(1));
    EXPECT_EQ(
        world->messages[0].text,
        "All error information are copied to the clipboard\r\n.\r\n\r\nPlease insert the content of the "
        "clipboard to your email\r\nby pressing [Ctrl] [V]. You can also use the command 'Insert' on the "
        "menu "
        "'Edit'.\r\n.");
    EXPECT_EQ(world->messages[0].title, "");
    EXPECT_THAT(world->eventFailures, IsEmpty());
}

TEST_F(ErrorReportTest, FrenchMailFailsForItsMissingTextAndNothingFollows) {
    LangOffset() = 20000;
    FailAndClick({2});
    ASSERT_THAT(world->eventFailures, SizeIs(1));
    EXPECT_EQ(world->eventFailures[0].Number(), 326);
    EXPECT_THAT(world->messages, IsEmpty());
    EXPECT_EQ(world->clipboard, "");
    EXPECT_THAT(world->opened, IsEmpty());
}

TEST_F(ErrorReportTest, SaveAsksBeforeItReplacesAReport) {
    world->tempFolder = "C:\\Temp\\";
    const std::string path = "C:\\Temp\\Orvo_Tile.ERR";
    FailAndClick({1});
    EXPECT_EQ(world->files[path], Golden(kLanguages[0], 1) + "\r\n");
    ASSERT_THAT(world->messages, SizeIs(1));
    EXPECT_EQ(world->messages[0].text,
              "Das Fehlerprotokoll wurde in die Datei 'C:\\Temp\\Orvo_Tile.ERR' geschrieben !");
    EXPECT_EQ(world->messages[0].buttons, MessageButtons::OK);

    world->messageAnswer = MessageAnswer::No;
    FailAndClick({1});
    EXPECT_EQ(world->files[path], Golden(kLanguages[0], 1) + "\r\n") << "answered no";
    ASSERT_THAT(world->messages, SizeIs(2));
    EXPECT_EQ(world->messages[1].text, "'C:\\Temp\\Orvo_Tile.ERR' existiert, überschreiben ?");
    EXPECT_EQ(world->messages[1].buttons, MessageButtons::YesNo);

    world->messageAnswer = MessageAnswer::Yes;
    FailAndClick({1});
    EXPECT_EQ(world->files[path], Golden(kLanguages[0], 3) + "\r\n");
    EXPECT_THAT(world->messages, SizeIs(4));

    world->lockedFiles = {path};
    FailAndClick({1, 3});
    EXPECT_THAT(world->messages, SizeIs(5)) << "asked, but nothing to confirm";
    ASSERT_THAT(world->eventFailures, SizeIs(1));
    EXPECT_EQ(world->eventFailures[0].Number(), 70);
    EXPECT_THAT(world->opened, SizeIs(1)) << "the dialog goes on";
}

TEST_F(ErrorReportTest, LogThatCannotBeWrittenIsAFailureOfTheCallAndNothingIsShown) {
    const std::string missing[] = {"C:\\nowhere", ""};
    for (const std::string& folder : missing) {
        world->tempFolder = folder;
        try {
            Fail();
            FAIL() << folder;
        } catch (const RuntimeError& failure) {
            EXPECT_EQ(failure.Number(), 76);
            EXPECT_EQ(failure.Description(), "Path not found: " + folder + "\\Orvo_Tile.EPT");
        }
    }
    EXPECT_THAT(world->failures, IsEmpty());
    EXPECT_EQ(world->beeps, 0);
    world->tempFolder = "C:\\Temp";
    Fail();
    EXPECT_THAT(world->failures, SizeIs(1));
}

TEST_F(ErrorReportTest, FailureWhileOneIsShownReachesTheCallerOfTheSecond) {
    Long second = 0;
    world->answer = [&](const FailureView&) {
        try {
            Fail();
        } catch (const RuntimeError& failure) {
            second = failure.Number();
        }
        return kNext;
    };
    Fail();
    EXPECT_EQ(second, 400);
    EXPECT_THAT(world->failures, SizeIs(1));
    world->answer = nullptr;
    Fail();
    EXPECT_THAT(world->failures, SizeIs(2)) << "shown again once the first is closed";
}

}  // namespace
}  // namespace orvo
