// The report's ways out of the window, and the desktop's services.
#include <QClipboard>
#include <QPrinter>

#include "platform/qt/Printing.h"
#include "tests/Failure.h"
#include "tests/qt/WindowFixture.h"

namespace orvo::qt {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ReportTest : public WindowTest {
  protected:
    ReportTest() { QApplication::clipboard()->setText("before"); }
    /// Clicks a report button; the dialog must stay open, and is left.
    void Use(const char* button) {
        boxes.clear();
        EXPECT_EQ(Fail({Click(button), Click("cmdContinue(2)")}), (Outcome{1, false}));
    }
    std::string& saved = world->files["C:\\Temp\\Orvo_Tile.ERR"] = "old";
};

TEST_F(ReportTest, MailAndWebGoThroughTheClipboard) {
    LangOffset() = 10000;
    Use("cmdProtocol(2)");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_THAT(boxes[0].text, StartsWith("All error information are copied to the clipboard\n.\n\nPlease"));
    EXPECT_THAT(Clipboard(), StartsWith(std::string(70, '-') + "\r\nF E H L E R"));

    MakeOpener("sleep 4");  // a browser in the foreground
    Use("cmdProtocol(3)");
    EXPECT_THAT(boxes, IsEmpty());
    EXPECT_EQ(Opened(), "mailto:" + Text(9106) + "\n" + Text(9108) + "\n");

    QApplication::clipboard()->setText("before");
    MakeOpener("exit 3");
    Use("cmdProtocol(3)");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].text, "No program opens this address:\n\n" + Text(9108) +
                                 "\n\nThe error report is on the clipboard.");
    EXPECT_NE(Clipboard(), "before");
}

TEST_F(ReportTest, AFailingActionIsToldAndTheDialogStays) {
    world->lockedFiles.insert("C:\\Temp\\Orvo_Tile.ERR");
    const struct {
        Integer offset;
        const char *button, *text;
    } cases[] = {
        {0, "cmdProtocol(0)", "Laufzeitfehler '482':\n\nPrinter error: there is no default printer"},
        {0, "cmdProtocol(1)", "Laufzeitfehler '70':\n\nPermission denied"},
        {20000, "cmdProtocol(2)", "Erreur d'exécution '326' :\n\nResource"},
    };
    for (const auto& [offset, button, text] : cases) {
        LangOffset() = offset;
        Use(button);
        ASSERT_FALSE(boxes.empty());
        EXPECT_THAT(boxes.back().text, StartsWith(text));
    }
    EXPECT_EQ(Clipboard(), "before");
    EXPECT_EQ(Opened(), "");
    EXPECT_EQ(saved, "old");
}

TEST_F(ReportTest, ThePointerIsSetBackHoweverOftenItWasChanged) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    QGuiApplication::setOverrideCursor(Qt::BusyCursor);
    desktop->ResetPointer();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(ReportTest, ThreadsThatMayNotUseWindowsAreRefused) {
    std::thread([&] {
        const auto box = [&] { desktop->MessageBox("", "", MessageIcon::None, MessageButtons::OK); };
        EXPECT_EQ(NumberOf(box), 429);
    }).join();
}

TEST(Paper, TabsAreExpandedAndNothingIsCutOff) {
    EXPECT_EQ(PaperLines("ab\tc\t\td", 80), QStringList{"ab      c               d"});
    EXPECT_EQ(PaperLines("", 80), QStringList{""});
    EXPECT_EQ(PaperLines("abcdefgh", 3), (QStringList{"abc", "def", "gh"}));
}

TEST(Paper, LongReportsGoOverSeveralPages) {
    std::string whyNot;
    ASSERT_TRUE(EnsureApplication([] { return ""; }, whyNot)) << whyNot;
    const TempFolder folder;
    const auto pages = [&](std::size_t lines) {
        QPrinter printer;
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setOutputFileName(QString::fromStdString(folder / "out.pdf"));
        PrintLines(printer, std::vector<std::string>(lines, "Zeile"));
        return QByteArray::fromStdString(ReadFile(folder / "out.pdf")).count("/Type /Page\n");
    };
    EXPECT_EQ(pages(1), 1);
    EXPECT_GE(pages(200), 3);  // at most 80 lines of 10 points on 842 points of paper
    EXPECT_LE(pages(200), 5);
}

}  // namespace
}  // namespace orvo::qt
