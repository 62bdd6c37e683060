// The error dialog's window: what it shows, how it is used, how it closes.
#include <QClipboard>
#include <QMimeData>
#include <map>
#include <numeric>

#include "errorreport/Version.h"
#include "tests/qt/WindowFixture.h"

namespace orvo::qt {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Language {
    const char* name;
    Integer offset;
    std::string title;
    std::map<std::string, std::string> captions;
    std::array<std::string, 3> comment;  ///< before the company, before the fax number, after it
    std::array<std::string, 2> upper;    ///< program information, failure
};

const std::vector<Language>& Languages() {
    static const std::vector<Language> languages{
        {"German",
         0,
         "ACHTUNG! Ein Fehler ist aufgetreten",
         {{"framComment", "Hinweise:"},
          {"framFehler", "Fehlerbeschreibung:"},
          {"lblErrTitel(0)", "Fehlerbeschreibung:"},
          {"lblErrTitel(1)", "Modul:"},
          {"lblErrTitel(2)", "Prozedur:"},
          {"lblErrTitel(3)", "Zeilen-Nr.:"},
          {"framProgInfo", "Programm - Infos:"},
          {"framProtocol", "Fehlerprotokoll..."},
          {"cmdProtocol(0)", "&Drucken"},
          {"cmdProtocol(1)", "&Speichern"},
          {"framContinue", "Weiterer Programmablauf..."},
          {"cmdContinue(0)", "Befehl wieder&holen"},
          {"cmdContinue(1)", "Fortsetzen mit &nächstem Befehl"},
          {"cmdContinue(2)", "&Prozedur verlassen"}},
         {"Es liegt ein Problem vor, mit dem Sie sich an den technischen Support von ",
          "  wenden sollten. Bitte drucken Sie den Fehlerreport und faxen ihn an",
          "oder benutzen Sie die EMail-Funktion. Weitere Hinweise sowie Updates finden Sie im Internet "
          "(WWW)."},
         {"PROGRAMM - INFOS:", "FEHLERBESCHREIBUNG:"}},
        {"English",
         10000,
         "WARNING! an error has occured ...",
         {{"framComment", "Remarks:"},
          {"framFehler", "Error description:"},
          {"lblErrTitel(0)", "Error description:"},
          {"lblErrTitel(1)", "Modul:"},
          {"lblErrTitel(2)", "Procedure:"},
          {"lblErrTitel(3)", "Record No.:"},
          {"framProgInfo", "Program infos:"},
          {"framProtocol", "Error protocoll..."},
          {"cmdProtocol(0)", "&Print"},
          {"cmdProtocol(1)", "&Save"},
          {"framContinue", "Continue..."},
          {"cmdContinue(0)", "&Redo Command"},
          {"cmdContinue(1)", "&Continue with next Command"},
          {"cmdContinue(2)", "&Exit Procedure"}},
         {"There is a software problem. Please call the technical Support of ",
          " . Please print out the bug report and fax them to",
          ", or use the EMail function. Further information and updates can be find in the Internet (WWW)."},
         {"PROGRAM INFOS:", "ERROR DESCRIPTION:"}},
        {"French",
         20000,
         "ATTENTION! Une erreur s'est produite ...",
         {{"framComment", "Remarques:"},
          {"framFehler", "Description de l'erreur :"},
          {"lblErrTitel(0)", "Description de l'erreur :"},
          {"lblErrTitel(1)", "Module:"},
          {"lblErrTitel(2)", "Procédure:"},
          {"lblErrTitel(3)", "Ligne N°. :"},
          {"framProgInfo", "Information programme :"},
          {"framProtocol", "Protocole d'erreur..."},
          {"cmdProtocol(0)", "&Imprimer"},
          {"cmdProtocol(1)", "&Sauver"},
          {"framContinue", "Continue..."},
          {"cmdContinue(0)", "&Commande répèter"},
          {"cmdContinue(1)", "&Continuer avec la commande suivante"},
          {"cmdContinue(2)", "&Procédure de sortie"}},
         {"Il y a un problème logiciel. Veuillez appeler le support technique de ",
          " . Veuillez imprimer le rapport d'erreur et nous le faxer à",
          ", ou par E-Mail. Pour plus d'informations et des mises à jour, allez sur Internet (www)."},
         {"INFORMATION PROGRAMME :", "DESCRIPTION DE L'ERREUR :"}}};
    return languages;
}

class EachLanguage : public WindowTest, public testing::WithParamInterface<Language> {
  protected:
    EachLanguage() { LangOffset() = GetParam().offset; }
};
INSTANTIATE_TEST_SUITE_P(Window, EachLanguage, testing::ValuesIn(Languages()),
                         [](const auto& instance) { return instance.param.name; });

void ExpectCaptions(const QDialog& window, const Language& language, bool first) {
    auto expected = language.captions;
    const std::string company = first ? "" : Text(1);
    const std::string fax = first ? "" : Text(9107);
    expected["lblComment"] = language.comment[0] + company + language.comment[1] + fax + language.comment[2];
    expected["Label1"] = " ! ";
    expected["lblError(0)"] = "61 (Disk full: R & D)";
    expected["lblError(1)"] = "Demo";
    expected["lblError(2)"] = "Cut";
    expected["lblError(3)"] = "4711";
    expected["lblProgInfo"] = "Orvo_Tile  V" + std::to_string(kVersionMajor) + "." +
                              std::to_string(kVersionMinor) + "." + std::to_string(kVersionRevision);
    expected["cmdProtocol(2)"] = "&EMail";
    expected["cmdProtocol(3)"] = "&WWW";
    expected["framCallStack"] = "CallStack:";
    expected["lstCallStack"] = "14:25:07 [Demo] Public Sub Cut()";
    std::map<std::string, std::string> shown;
    for (const Control& control : dynamic_cast<Ferrow&>(GlobalErrorDialog()).Controls().controls) {
        const QString name = QString::fromStdString(control.name) +
                             (control.index < 0 ? QString() : QString("(%1)").arg(control.index));
        const auto* widget = window.findChild<QWidget*>(name);
        ASSERT_NE(widget, nullptr) << control.name;
        if (widget->isVisible()) shown[name.toStdString()] = ShownText(*widget).toStdString();
    }
    EXPECT_EQ(window.windowTitle().toStdString(), language.title);
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
        EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry()))
            << label->objectName().toStdString();
        EXPECT_LE(label->document()->size().height(), label->height()) << label->objectName().toStdString();
        EXPECT_GE(label->document()->defaultFont().pointSizeF(), 6) << label->objectName().toStdString();
        const auto words = label->toPlainText().split(' ');
        for (const auto& word : words)
            EXPECT_LE(QFontMetrics(label->document()->defaultFont()).horizontalAdvance(word), label->width())
                << word.toStdString();
        for (const auto* other : label->parentWidget()->findChildren<QTextEdit*>())
            EXPECT_TRUE(other == label || !other->geometry().intersects(label->geometry()))
                << label->objectName().toStdString() << " over " << other->objectName().toStdString();
    }
    for (const auto* frame : window.findChildren<QGroupBox*>())
        EXPECT_LT(frame->fontMetrics().horizontalAdvance(frame->title()), frame->width());
}

TEST_P(EachLanguage, EveryTextIsShownWholeOnBothShowings) {
    Fail({[](QDialog& window) {
              ExpectCaptions(window, GetParam(), true);
              ExpectThatAllFits(window);
              QTest::mouseClick(&Widget(window, "cmdContinue(0)"), Qt::LeftButton);
          },
          [](QDialog& window) {
              ExpectCaptions(window, GetParam(), false);
              ExpectThatAllFits(window);
              QTest::mouseClick(&Widget(window, "cmdContinue(2)"), Qt::LeftButton);
          }},
         2);
    EXPECT_THAT(heard, ElementsAre("61 (Disk full: R & D)", "61 (Disk full: R & D)"));
}

std::string GoldenReport(const std::string& programUpper, const std::string& failureUpper,
                         const std::vector<std::string>& titles) {
    const std::string separator = std::string(70, '-') + "\r\n";
    const std::string indent = "          ";
    return separator + "F E H L E R P R O T O K O L L vom Ferrow\r\n" + separator + programUpper + "\r\n" +
           indent + "Kachelkarte 7\r\n" + separator + failureUpper + "\r\n" + indent + titles[0] +
           "\t61 (Disk full: R & D)\r\n" + indent + titles[1] + "\tDemo\r\n" + indent + titles[2] +
           "\tCut\r\n" + indent + titles[3] + "\t4711\r\n" + indent +
           "Datum/Uhrzeit:\t03-09-2024 / 14:25:07\r\n" + separator + "CALLSTACK:\r\n" + indent +
           "14:25:07 [Demo] Public Sub Cut()\r\n" + separator + "SYSTEMINFO:\r\n" + indent +
           "Plattform:\tWindows NT\r\n" + indent + "Version:\t6.1\r\n" + indent +
           "Build:\t7601   Service Pack 1\r\n" + separator;
}

TEST_P(EachLanguage, TheLogHasDesignCaptionsFirstAndLocalizedOnesThen) {
    dynamic_cast<Ferrow&>(GlobalErrorDialog()).SetProgInfo("Kachelkarte 7");
    const Language& language = GetParam();
    const std::string first = GoldenReport(
        "PROGRAMM-INFOS:", "FEHLERBESCHREIBUNG:", {"Fehler-Nr:", "Modul:", "Prozedur:", "Zeilen-Nr.:"});
    const auto& captions = language.captions;
    const std::string second = GoldenReport(language.upper[0], language.upper[1],
                                            {captions.at("lblErrTitel(0)"), captions.at("lblErrTitel(1)"),
                                             captions.at("lblErrTitel(2)"), captions.at("lblErrTitel(3)")});
    Fail({[&](QDialog& window) {
              EXPECT_EQ(File("Orvo_Tile.EPT"), first + "\r\n");  // before the user has done anything
              Click("cmdProtocol(3)")(window);                   // built afresh, now localized
              EXPECT_EQ(Clipboard(), second);
          },
          Click("cmdContinue(0)"), Click("cmdContinue(2)")},
         2);
    EXPECT_EQ(File("Orvo_Tile.EPT"), first + "\r\n" + second + "\r\n");
    EXPECT_EQ(Opened(), Text(9108) + "\n");
}

TEST_P(EachLanguage, EachChoiceHasItsEnd) {
    EXPECT_EQ(Fail({Click("cmdContinue(0)"), Click("cmdContinue(0)"), Click("cmdContinue(0)")}, 3),
              (Outcome{4, true}));
    EXPECT_EQ(Fail({Click("cmdContinue(1)")}), (Outcome{1, true}));
    EXPECT_EQ(Fail({Click("cmdContinue(2)")}), (Outcome{1, false}));
    EXPECT_EQ(heard.size(), 5U);
    EXPECT_THAT(boxes, IsEmpty());
}

struct AccessKey {
    Integer offset;
    int key;
    std::vector<const char*> buttons;  ///< that share it
};

/// A button on its own is clicked at once; among several the focus goes round, and Enter clicks.
TEST_F(WindowTest, AccessKeysClickOrGoRoundTheButtonsThatShareThem) {
    const std::vector<AccessKey> keys{{0, Qt::Key_D, {"cmdProtocol(0)"}},
                                      {0, Qt::Key_S, {"cmdProtocol(1)"}},
                                      {0, Qt::Key_E, {"cmdProtocol(2)"}},
                                      {0, Qt::Key_W, {"cmdProtocol(3)"}},
                                      {0, Qt::Key_H, {"cmdContinue(0)"}},
                                      {0, Qt::Key_N, {"cmdContinue(1)"}},
                                      {0, Qt::Key_P, {"cmdContinue(2)"}},
                                      {10000, Qt::Key_P, {"cmdProtocol(0)"}},
                                      {10000, Qt::Key_S, {"cmdProtocol(1)"}},
                                      {10000, Qt::Key_W, {"cmdProtocol(3)"}},
                                      {10000, Qt::Key_E, {"cmdProtocol(2)", "cmdContinue(2)"}},
                                      {10000, Qt::Key_R, {"cmdContinue(0)"}},
                                      {10000, Qt::Key_C, {"cmdContinue(1)"}},
                                      {20000, Qt::Key_I, {"cmdProtocol(0)"}},
                                      {20000, Qt::Key_S, {"cmdProtocol(1)"}},
                                      {20000, Qt::Key_E, {"cmdProtocol(2)"}},
                                      {20000, Qt::Key_W, {"cmdProtocol(3)"}},
                                      {20000, Qt::Key_C, {"cmdContinue(0)", "cmdContinue(1)"}},
                                      {20000, Qt::Key_P, {"cmdContinue(2)"}}};
    for (const AccessKey& key : keys) {
        SCOPED_TRACE(std::to_string(key.offset) + " " + static_cast<char>(key.key));
        LangOffset() = key.offset;
        for (std::size_t wanted = 0; wanted < key.buttons.size(); ++wanted) {
            std::vector<std::string> clicked;
            Fail({[&](QDialog& window) {
                for (auto* button : window.findChildren<QPushButton*>()) {
                    button->disconnect();
                    QObject::connect(button, &QPushButton::clicked,
                                     [&, button] { clicked.push_back(button->objectName().toStdString()); });
                }
                if (key.buttons.size() == 1) {
                    Press(key.key, Qt::AltModifier)(window);
                } else {
                    // Once round, and on to the wanted one.
                    for (std::size_t n = 0; n <= key.buttons.size() + wanted; ++n) {
                        Press(key.key, Qt::AltModifier)(window);
                        EXPECT_EQ(window.focusWidget()->objectName(),
                                  QString(key.buttons[n % key.buttons.size()]));
                    }
                    EXPECT_THAT(clicked, IsEmpty());
                    Press(wanted == 0 ? Qt::Key_Return : Qt::Key_Space)(window);
                }
                window.close();
            }});
            EXPECT_THAT(clicked, ElementsAre(key.buttons[wanted]));
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
    const std::vector<std::pair<const char*, const char*>> expected{
        {"lblComment", "Hinweise:"},         {"lblError(0)", "Fehlerbeschreibung:"},
        {"lblError(2)", "Prozedur:"},        {"lstCallStack", "CallStack:"},
        {"cmdProtocol(0)", "Drucken"},       {"cmdContinue(1)", "Fortsetzen mit nächstem Befehl"},
        {"lblProgInfo", "Programm - Infos:"}};
    for (const auto& [control, name] : expected) EXPECT_EQ(names[control], name);
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
        int y = 0;
        for (const char* name :
             {"framComment", "framFehler", "framProgInfo", "framProtocol", "framCallStack", "framContinue"}) {
            const QRect frame = Widget(window, name).geometry();
            EXPECT_EQ(frame.topLeft(), QPoint(0, y)) << name;
            y += frame.height();
        }
        EXPECT_EQ(y, window.height());
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
              Language expected = Languages()[1];
              expected.comment = Languages()[0].comment;  // built before the showing
              ExpectCaptions(window, expected, true);
              LangOffset() = 30000;  // every text fails
              activate(window);
              activate(window);
          },
          Click("cmdContinue(2)")});
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].text, "Run-time error '6':\n\nOverflow");
}

TEST_F(WindowTest, AFailureWhileOneIsShownIsRefused) {
    EXPECT_EQ(Fail({[&](QDialog& window) {
                  try {
                      Procedure<void>(kCut).Run(
                          [](Statements& run) { run([] { throw RuntimeError(Fault::Overflow); }); });
                      FAIL() << "a second dialog";
                  } catch (const RuntimeError& failure) {
                      EXPECT_EQ(failure.Number(), 400);
                  }
                  Click("cmdContinue(1)")(window);
              }}),
              (Outcome{1, true}));
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
