// The report's ways out of the window, and the desktop's services.
#include <QClipboard>
#include <QPrinter>

#include "platform/qt/Printing.h"
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
};

TEST_F(ReportTest, SaveAsksBeforeItReplaces) {
    Use("cmdProtocol(1)");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].text,
              "Das Fehlerprotokoll wurde in die Datei 'C:\\Temp\\Orvo_Tile.ERR' geschrieben !");
    EXPECT_EQ(boxes[0].title, "Orvo_Tile");
    EXPECT_THAT(File("Orvo_Tile.ERR"), HasSubstr("\t61 (Disk full: R & D)\r\n"));

    world->PutFile("C:\\Temp\\Orvo_Tile.ERR", "old");
    boxButton = 1;
    Use("cmdProtocol(1)");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].text, "'C:\\Temp\\Orvo_Tile.ERR' existiert, überschreiben ?");
    EXPECT_THAT(boxes[0].buttons, ElementsAre("&Ja", "&Nein"));
    EXPECT_EQ(File("Orvo_Tile.ERR"), "old");

    boxButton = 0;
    Use("cmdProtocol(1)");
    EXPECT_EQ(boxes.size(), 2U);
    EXPECT_NE(File("Orvo_Tile.ERR"), "old");
}

TEST_F(ReportTest, MailGoesThroughTheClipboard) {
    LangOffset() = 10000;
    Use("cmdProtocol(2)");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].text,
              "All error information are copied to the clipboard\n.\n\n"
              "Please insert the content of the clipboard to your email\n"
              "by pressing [Ctrl] [V]. You can also use the command 'Insert' on the menu 'Edit'.\n.");
    EXPECT_THAT(Clipboard(), StartsWith(std::string(70, '-') + "\r\nF E H L E R"));
    EXPECT_EQ(Opened(), "mailto:" + Text(9106) + "\n");
}

TEST_F(ReportTest, AFailingActionIsToldAndTheDialogStays) {
    struct Case {
        Integer offset;
        const char* button;
        const char* text;
    };
    world->lockedFiles.insert("C:\\Temp\\Orvo_Tile.ERR");
    world->PutFile("C:\\Temp\\Orvo_Tile.ERR", "old");
    const std::vector<Case> cases{
        {0, "cmdProtocol(0)", "Laufzeitfehler '482':\n\nPrinter error: there is no default printer"},
        {0, "cmdProtocol(1)", "Laufzeitfehler '70':\n\nPermission denied"},
        {20000, "cmdProtocol(2)", "Erreur d'exécution '326' :\n\nResource"}};
    for (const Case& expected : cases) {
        LangOffset() = expected.offset;
        Use(expected.button);
        ASSERT_FALSE(boxes.empty());
        EXPECT_THAT(boxes.back().text, StartsWith(expected.text));
    }
    EXPECT_EQ(Clipboard(), "before");
    EXPECT_EQ(Opened(), "");
    EXPECT_EQ(File("Orvo_Tile.ERR"), "old");
}

TEST_F(ReportTest, AnAddressThatNothingOpensIsNamed) {
    LangOffset() = 10000;
    MakeOpener("exit 3");
    Use("cmdProtocol(3)");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].text, "No program opens this address:\n\n" + Text(9108) +
                                 "\n\nThe error report is on the clipboard.");
    EXPECT_NE(Clipboard(), "before");

    MakeOpener("sleep 4");  // a browser in the foreground
    Use("cmdProtocol(3)");
    EXPECT_THAT(boxes, IsEmpty());
}

/// A dialog whose report buttons throw what no RuntimeError is.
class Thrower : public IDialogEvents {
  public:
    Thrower() {
        form_.self = {"Form", {{"Caption", "Thrower"}}};
        form_.self.visible = true;
        form_.scaleWidth = form_.scaleHeight = 3000;
        for (Integer n = 0; n < 4; ++n) {
            form_.controls.emplace_back("CommandButton", Control::Properties{{"Caption", "&Throw"}});
            form_.controls.back().name = "cmdProtocol";
            form_.controls.back().index = n;
            form_.controls.back().box = {0, n * 600, 1500, 500};
        }
    }
    const Form& Controls() const override { return form_; }
    void Form_Activate() override {}
    void cmdContinue_Click(Integer) override {}
    void cmdProtocol_Click(Integer index) override {
        if (index == 0) throw std::bad_alloc();
        if (index == 1) throw std::invalid_argument("odd");
        if (index == 2) throw 3;
        form_.self.visible = false;
    }

  private:
    Form form_;
};

TEST_F(ReportTest, EveryExceptionOfAHandlerIsTold) {
    LangOffset() = 10000;
    Thrower thrower;
    steps = {Click("cmdProtocol(0)"), Click("cmdProtocol(1)"), Click("cmdProtocol(2)"),
             Click("cmdProtocol(3)")};
    desktop->ShowModal(thrower);
    ASSERT_EQ(boxes.size(), 3U);
    EXPECT_EQ(boxes[0].text, "Run-time error '7':\n\nOut of memory");
    EXPECT_EQ(boxes[1].text, "Run-time error '440':\n\nodd");
    EXPECT_EQ(boxes[2].text, "Run-time error '440':\n\nAutomation error");
}

TEST_F(ReportTest, ThePointerIsSetBackHoweverOftenItWasChanged) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    QGuiApplication::setOverrideCursor(Qt::BusyCursor);
    desktop->ResetPointer();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(ReportTest, ThreadsThatMayNotUseWindowsAreRefused) {
    Long number = 0;
    std::thread([&] {
        try {
            desktop->MessageBox("", "", MessageIcon::None, MessageButtons::OK);
        } catch (const RuntimeError& failure) {
            number = failure.Number();
        }
    }).join();
    EXPECT_EQ(number, 429);
}

TEST(Paper, TabsAreExpandedAndNothingIsCutOff) {
    EXPECT_EQ(PaperLines("ab\tc\t\td", 80), QStringList{"ab      c               d"});
    EXPECT_EQ(PaperLines("", 80), QStringList{""});
    EXPECT_EQ(PaperLines("abcdefgh", 3), (QStringList{"abc", "def", "gh"}));
}

TEST_F(ReportTest, LongReportsGoOverSeveralPages) {
    const auto pages = [this](std::size_t lines) {
        QPrinter printer;
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(QString::fromStdString(programs / "out.pdf"));
        PrintLines(printer, std::vector<std::string>(lines, "Zeile"));
        return QString::fromLatin1(QByteArray::fromStdString(ReadFile(programs / "out.pdf")))
            .count("/Type /Page\n");
    };
    EXPECT_EQ(pages(1), 1);
    EXPECT_GE(pages(200), 3);  // at most 80 lines of 10 points on 842 points of paper
    EXPECT_LE(pages(200), 5);
}

}  // namespace
}  // namespace orvo::qt
