// The error dialog's window: what it shows, how it is used, how it closes.
#include <QClipboard>
#include <map>

#include "errorreport/Version.h"
#include "tests/qt/WindowFixture.h"

namespace orvo::qt {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// The captions as given, in one language.
std::map<std::string, std::string> Captions(Integer offset) {
    std::map<std::string, std::string> captions;
    for (const QStringList& row : Table("captions.txt"))
        captions[row[0].toStdString()] = row[1 + offset / 10000].toStdString();
    return captions;
}

void ExpectCaptions(const QDialog& window, bool first) {
    auto expected = Captions(LangOffset());
    expected["lblComment"] = expected["comment 1"] + (first ? "" : Text(1)) + expected["comment 2"] +
                             (first ? "" : Text(9107)) + expected["comment 3"];
    for (const char* part : {"comment 1", "comment 2", "comment 3"}) expected.erase(part);
    expected["lblProgInfo"] = "Orvo_Tile  V" + std::to_string(kVersionMajor) + "." +
                              std::to_string(kVersionMinor) + "." + std::to_string(kVersionRevision);
    std::map<std::string, std::string> shown{{"title", window.windowTitle().toStdString()}};
    for (const auto* widget : window.findChildren<QWidget*>(QRegularExpression("^(fram|lbl|Label|cmd|lst)")))
        if (widget->isVisible()) shown[widget->objectName().toStdString()] = ShownText(*widget).toStdString();
    EXPECT_EQ(shown, expected);
}

/// Measured anew, by the fonts that the widgets have in the end.
void ExpectThatAllFits(const QDialog& window) {
    for (const auto* button : window.findChildren<QPushButton*>()) {
        const QSize text = QFontMetrics(button->font()).size(Qt::TextShowMnemonic, button->text());
        EXPECT_TRUE(text.width() <= button->width() - 4 && text.height() <= button->height() - 4)
            << button->text().toStdString();
    }
    for (const auto* label : window.findChildren<QTextEdit*>()) {
        SCOPED_TRACE(label->objectName().toStdString());
        const QFont font = label->document()->defaultFont();
        EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry()));
        EXPECT_LE(label->document()->size().height(), label->height());
        EXPECT_GE(font.pointSizeF(), 6);
        for (const auto& word : label->toPlainText().split(' '))
            EXPECT_LE(QFontMetrics(font).horizontalAdvance(word), label->width()) << word.toStdString();
        for (const auto* other : label->parentWidget()->findChildren<QTextEdit*>())
            EXPECT_TRUE(other == label || !other->geometry().intersects(label->geometry()));
    }
    for (const auto* frame : window.findChildren<QGroupBox*>())
        EXPECT_LT(frame->fontMetrics().horizontalAdvance(frame->title()), frame->width());
}

TEST_F(WindowTest, EveryTextIsShownWholeAndTheActivationLocalizesTheReport) {
    for (const Integer language : std::vector<Integer>{0, 10000, 20000}) {
        SCOPED_TRACE(language);
        SetErrorDialog(std::make_unique<Ferrow>());
        LangOffset() = language;
        log.clear();
        const std::string row =
            "          " + Captions(language)["lblErrTitel(0)"] + "\t61 (Disk full: R & D)";
        Fail({[&](QDialog& window) {
                  ExpectCaptions(window, true);
                  ExpectThatAllFits(window);
                  EXPECT_THAT(log, HasSubstr("Fehler-Nr:\t61 (Disk full: R & D)"));
                  EXPECT_THAT(log, Not(HasSubstr(row)));
                  Click("cmdContinue(0)")(window);
              },
              [&](QDialog& window) {
                  ExpectCaptions(window, false);
                  ExpectThatAllFits(window);
                  EXPECT_THAT(log, HasSubstr(row));
                  Click("cmdContinue(2)")(window);
              }},
             2);
    }
    EXPECT_THAT(heard, testing::SizeIs(6));
    EXPECT_THAT(heard, testing::Each("61 (Disk full: R & D)"));
}

TEST_F(WindowTest, EachChoiceHasItsEnd) {
    EXPECT_EQ(Fail({Click("cmdContinue(0)"), Click("cmdContinue(0)"), Click("cmdContinue(0)")}, 3),
              (Outcome{4, true}));
    EXPECT_EQ(Fail({Click("cmdContinue(1)")}), (Outcome{1, true}));
    EXPECT_EQ(Fail({Click("cmdContinue(2)")}), (Outcome{1, false}));
    EXPECT_THAT(boxes, IsEmpty());
}

/// A button on its own is clicked at once; among several the focus goes round, and Enter clicks.
TEST_F(WindowTest, AccessKeysClickOrGoRoundTheButtonsThatShareThem) {
    for (const QStringList& row : Table("access-keys.txt")) {
        SCOPED_TRACE(row.join(' ').toStdString());
        LangOffset() = row[0].toShort();
        const int key = row[1][0].unicode();
        const QStringList buttons = row.mid(2);
        for (qsizetype wanted = 0; wanted < buttons.size(); ++wanted) {
            std::vector<std::string> clicked;
            Fail({[&](QDialog& window) {
                for (auto* button : window.findChildren<QPushButton*>()) {
                    button->disconnect();
                    QObject::connect(button, &QPushButton::clicked,
                                     [&, button] { clicked.push_back(button->objectName().toStdString()); });
                }
                if (buttons.size() == 1) {
                    Press(key, Qt::AltModifier)(window);
                } else {
                    // Once round, and on to the wanted one.
                    for (qsizetype n = 0; n <= buttons.size() + wanted; ++n) {
                        Press(key, Qt::AltModifier)(window);
                        EXPECT_EQ(window.focusWidget()->objectName(), buttons[n % buttons.size()]);
                    }
                    EXPECT_THAT(clicked, IsEmpty());
                    Press(wanted == 0 ? Qt::Key_Return : Qt::Key_Space)(window);
                }
                window.close();
            }});
            EXPECT_THAT(clicked, ElementsAre(buttons[wanted].toStdString()));
        }
    }
}

TEST_F(WindowTest, TabReachesEverythingInOrderAndEverythingHasAName) {
    std::vector<std::string> reached;
    std::map<std::string, std::string> names;
    Fail({[&](QDialog& window) {
        Press(Qt::Key_Return)(window);  // nothing has the focus: a key pressed in haste does nothing
        for (int n = 0; n < 19; ++n) {
            Press(Qt::Key_Tab)(window);
            const QWidget* focus = window.focusWidget();
            reached.push_back(focus->objectName().toStdString());
            names[reached.back()] = focus->accessibleName().toStdString();
        }
        Widget(window, "lblError(0)").setFocus();
        Press(Qt::Key_A, Qt::ControlModifier)(window);
        Press(Qt::Key_C, Qt::ControlModifier)(window);
        EXPECT_EQ(Clipboard(), "61 (Disk full: R & D)");
        for (const auto* frame : window.findChildren<QGroupBox*>()) EXPECT_NE(frame->accessibleName(), "");
        window.close();
    }});
    EXPECT_THAT(reached, ElementsAre("lblComment", "Label1", "lblErrTitel(0)", "lblErrTitel(1)",
                                     "lblErrTitel(2)", "lblErrTitel(3)", "lblError(0)", "lblError(1)",
                                     "lblError(2)", "lblError(3)", "lblProgInfo", "cmdProtocol(0)",
                                     "cmdProtocol(1)", "cmdProtocol(2)", "cmdProtocol(3)", "lstCallStack",
                                     "cmdContinue(0)", "cmdContinue(1)", "cmdContinue(2)"));
    EXPECT_EQ(names["lblComment"], "Hinweise:");
    EXPECT_EQ(names["lblError(2)"], "Prozedur:");
    EXPECT_EQ(names["lstCallStack"], "CallStack:");
    EXPECT_EQ(names["cmdContinue(1)"], "Fortsetzen mit nächstem Befehl");
    EXPECT_EQ(names["lblProgInfo"], "Programm - Infos:");
}

TEST_F(WindowTest, ClosingWithoutAChoiceGivesTheChoiceMadeLast) {
    const std::vector<Step> closings{Press(Qt::Key_Escape),
                                     [](QDialog& window) { window.windowHandle()->close(); }};
    for (const Step& close : closings) {
        SetErrorDialog(std::make_unique<Ferrow>());  // no choice yet: retry
        EXPECT_EQ(Fail({close, Click("cmdContinue(1)")}, 2), (Outcome{2, true}));
        EXPECT_EQ(Fail({close}), (Outcome{1, true}));
        EXPECT_EQ(Fail({Click("cmdContinue(2)")}), (Outcome{1, false}));
        EXPECT_EQ(Fail({close}), (Outcome{1, false}));
    }
}

TEST_F(WindowTest, LiesInTheMiddleOfTheScreenAndHoldsTheFrames) {
    const Box screen = desktop->Screen();
    Fail({[&](QDialog& window) {
        const double twips = 1440.0 / window.logicalDpiX();
        EXPECT_NEAR(window.width() * twips, 7215, twips);
        EXPECT_NEAR(window.height() * twips, 5970, twips);
        EXPECT_NEAR((window.x() * 2 + window.width()) * twips, screen.width, 3 * twips);
        EXPECT_NEAR((window.y() * 2 + window.height()) * twips, screen.height, 3 * twips);
        EXPECT_EQ(Widget(window, "framContinue").geometry().bottomRight(), window.rect().bottomRight());
        Click("cmdContinue(2)")(window);
    }});
}

TEST_F(WindowTest, LongTextsStayReadable) {
    const std::string path = "/" + std::string(900, 'x');
    const std::string descriptor = "[Demo] " + std::string(60, 'y') + " " + std::string(60, 'z');
    const ProcedureText text{descriptor, "Demo", "Cut"};
    steps = {[&](QDialog& window) {
        auto& label = dynamic_cast<QTextEdit&>(Widget(window, "lblError(0)"));
        EXPECT_EQ(label.toPlainText().toStdString(), "61 (Disk full: " + path + ")");
        EXPECT_EQ(label.toolTip(), label.toPlainText());
        EXPECT_EQ(label.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
        auto& list = dynamic_cast<QListWidget&>(Widget(window, "lstCallStack"));
        EXPECT_GE(list.visualItemRect(list.item(0)).height(), 2 * list.fontMetrics().height());
        EXPECT_LE(list.visualItemRect(list.item(0)).width(), list.viewport()->width());
        EXPECT_EQ(list.item(0)->toolTip().toStdString(), "14:25:07 " + descriptor);
        Click("cmdContinue(2)")(window);
    }};
    Procedure<void>(text).Run(
        [&](Statements& run) { run([&] { throw RuntimeError(Fault::DiskFull, path); }); });
}

TEST_F(WindowTest, EachActivationLocalizesAgainAndItsFailureIsToldOnce) {
    const auto activate = [](QDialog& window) {
        for (const auto type : {QEvent::WindowDeactivate, QEvent::WindowActivate}) {
            QEvent event(type);
            QApplication::sendEvent(&window, &event);
        }
    };
    Fail({[&](QDialog& window) {
        LangOffset() = 10000;
        activate(window);
        EXPECT_EQ(ShownText(Widget(window, "framComment")), "Remarks:");
        LangOffset() = 30000;  // every text fails
        activate(window);
        activate(window);
        Click("cmdContinue(2)")(window);
    }});
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].text, "Run-time error '6':\n\nOverflow");
}

TEST_F(WindowTest, AnInterruptionLeavesWithoutAWord) {
    EXPECT_EQ(Fail({[&](QDialog&) {
                       interrupted = true;
                       QTest::qWait(1000);
                   }},
                   99),
              (Outcome{1, false}));
    EXPECT_EQ(Fail({}, 99), (Outcome{1, false}));  // not even shown
    EXPECT_EQ(heard.size(), 1U);
    EXPECT_EQ(desktop->MessageBox("?", "", MessageIcon::None, MessageButtons::YesNo), MessageAnswer::No);
    EXPECT_THAT(boxes, IsEmpty());
}

}  // namespace
}  // namespace orvo::qt
