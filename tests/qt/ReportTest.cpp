// The report's ways out of the window, and the desktop's services.
#include <QPrinter>

#include "platform/qt/Printing.h"
#include "tests/Failure.h"
#include "tests/qt/WindowUser.h"

namespace orvo::qt {
namespace {

using testing::HasSubstr;

INSTANTIATE_TYPED_TEST_SUITE_P(Window, DesktopContract, WindowUser);
INSTANTIATE_TYPED_TEST_SUITE_P(Window, AttendedDesktop, WindowUser);

TEST_F(WindowTest, BoxesAreInTheUsersLanguage) {
    const std::tuple<Integer, const char*, const char*> cases[] = {
        {0, "cmdProtocol(1)", "Orvo_Tile|&Ja|&Nein|'C:\\Temp\\Orvo_Tile.ERR' existiert"},
        {10000, "cmdProtocol(2)", "Orvo_Tile|OK|All error information are copied to the clipboard\n.\n\nPl"},
        {0, "cmdProtocol(0)", "Orvo_Tile|OK|Laufzeitfehler '482':\n\nPrinter error: there is no default p"},
        {20000, "cmdProtocol(2)", "Orvo_Tile|OK|Erreur d'exécution '326' :\n\nResource"},
    };
    for (const auto& [language, button, box] : cases) {
        LangOffset() = language;
        FailAnd({Click(button), Click("cmdContinue(2)")});
        EXPECT_THAT(user.Shown(), testing::StartsWith(box));
    }
}

TEST_F(WindowTest, ABrowserMayStayInTheForegroundOrBeMissing) {
    const std::string missing =
        "No program opens this address:\n\n" + Text(9108) + "\n\nThe error report is on the clipboard.";
    for (const auto& [commands, opens] : {std::pair("sleep 4", true), {"exit 3", false}}) {
        user.MakeOpener(commands);
        FailAnd({Click("cmdProtocol(3)"), Click("cmdContinue(2)")});
        EXPECT_THAT(user.Shown(), HasSubstr(Text(9108) + "\n"));
        EXPECT_EQ(user.Shown().find(missing) == std::string::npos, opens);
    }
}

TEST_F(WindowTest, ThePointerIsSetBackAndOtherThreadsAreRefused) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    QGuiApplication::setOverrideCursor(Qt::BusyCursor);
    user.desktop->ResetPointer();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    std::thread([&] { EXPECT_EQ(NumberOf([&] { user.desktop->Beep(); }), 429); }).join();
}

TEST_F(WindowTest, PaperTakesLongReportsAndLongLinesAndARefusalIsTold) {
    const TempFolder folder;
    const auto print = [&](const std::string& file, std::size_t lines, const std::string& line) {
        QPrinter printer;
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setOutputFileName(QString::fromStdString(folder / file));
        PrintLines(printer, std::vector<std::string>(lines, line));
        return QByteArray::fromStdString(ReadFile(folder / file)).count("/Type /Page\n");
    };
    EXPECT_EQ(print("a.pdf", 50, std::string(5, '\t') + std::string(53, 'x')), 1)
        << "93 columns are one line";
    EXPECT_THAT(print("a.pdf", 200, "Zeile"), testing::AnyOf(3, 4));  // up to 80 lines on 842 points of paper
    EXPECT_GE(print("a.pdf", 1, std::string(200UL * 93, 'x')), 3) << "nothing is cut off";
    EXPECT_EQ(NumberOf([&] { print("none/a.pdf", 1, "x"); }), 482);
}

}  // namespace
}  // namespace orvo::qt
