// The error dialog's window: what it shows, how it is used, how it closes.

#include "tests/qt/WindowUser.h"

namespace orvo::qt {
namespace {

using testing::IsEmpty;

const Form& ShownForm() {
    return dynamic_cast<Ferrow&>(GlobalErrorDialog()).Controls();
}

QString NameOf(const Control& control) {
    const QString name = QString::fromStdString(control.name);
    return control.index < 0 ? name : name + QString("(%1)").arg(control.index);
}

QString ShownText(const QWidget& widget) {
    if (const auto* frame = dynamic_cast<const QGroupBox*>(&widget)) return frame->title();
    if (const auto* button = dynamic_cast<const QPushButton*>(&widget))
        return button->text().replace('\n', ' ');
    if (const auto* label = dynamic_cast<const QTextEdit*>(&widget)) return label->toPlainText();
    return dynamic_cast<const QListWidget&>(widget).item(0)->text();
}

void ExpectWholeForm(const QDialog& window) {
    EXPECT_EQ(window.windowTitle().toStdString(), ShownForm().self.Caption());
    for (const Control& control : ShownForm().controls) {
        SCOPED_TRACE(NameOf(control).toStdString());
        const QWidget& widget = Widget(window, NameOf(control).toUtf8());
        EXPECT_EQ(widget.isVisible(), control.visible);
        EXPECT_EQ(ShownText(widget).toStdString(),
                  control.list.empty() ? control.Caption() : control.list.front());
    }
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
    const std::map<Integer, std::string> titles{
        {0, "Fehlerbeschreibung:"}, {10000, "Error description:"}, {20000, "Description de l'erreur :"}};
    for (const auto& [language, title] : titles) {
        SCOPED_TRACE(language);
        SetErrorDialog(std::make_unique<Ferrow>());
        LangOffset() = language;
        log.clear();
        const std::string row = "          " + title + "\t61 (Disk full: R & D)";
        int showing = 0;
        const Step look = [&](QDialog& window) {  // the contact makes the second notice longer
            ExpectWholeForm(window);
            ExpectThatAllFits(window);
            EXPECT_EQ(ShownText(Widget(window, "lblErrTitel(0)")).toStdString(), title);
            EXPECT_EQ(log.find(row) != std::string::npos, ++showing == 2);
            Click(showing == 1 ? "cmdContinue(0)" : "cmdContinue(2)")(window);
        };
        FailAnd({look, look}, 2);
    }
    EXPECT_THAT(user.failures, testing::AllOf(testing::SizeIs(6), testing::Each("61 (Disk full: R & D)")));
}

/// A button on its own is clicked at once; among several the focus goes round, and Enter clicks.
TEST_F(WindowTest, AccessKeysClickOrGoRoundTheButtonsThatShareThem) {
    FailAnd({[&](QDialog& window) {
        QStringList clicked;
        std::map<QChar, QStringList> sharing;
        for (auto* button : window.findChildren<QPushButton*>()) {
            if (!button->isVisible()) continue;
            const QString caption = button->text();
            sharing[caption[caption.indexOf('&') + 1].toUpper()].push_back(button->objectName());
            button->disconnect();
            QObject::connect(button, &QPushButton::clicked, [&, button] { clicked += button->objectName(); });
        }
        EXPECT_EQ(sharing['E'], (QStringList{"cmdProtocol(2)", "cmdContinue(2)"}));
        for (const auto& [key, buttons] : sharing) {
            clicked.clear();
            for (qsizetype n = 0; n <= buttons.size(); ++n) {
                EXPECT_THAT(clicked, IsEmpty());
                Press(key.unicode(), Qt::AltModifier)(window);
                if (buttons.size() == 1) break;
                EXPECT_EQ(window.focusWidget()->objectName(), buttons[n % buttons.size()]);
            }
            if (buttons.size() > 1) Press(Qt::Key_Return)(window);
            EXPECT_EQ(clicked, QStringList{buttons[0]});
        }
        window.close();
    }});
}

TEST_F(WindowTest, TabReachesEverythingInOrderAndEverythingHasAName) {
    QStringList reached, expected;
    std::map<std::string, std::string> names;
    FailAnd({[&](QDialog& window) {
        Press(Qt::Key_Return)(window);  // nothing has the focus: a key pressed in haste does nothing
        for (const Control& control : ShownForm().controls) {
            if (control.TypeName() == "Frame" || !control.visible) continue;
            Press(Qt::Key_Tab)(window);
            expected.push_back(NameOf(control));
            reached.push_back(window.focusWidget()->objectName());
            names[control.name] = window.focusWidget()->accessibleName().toStdString();
        }
        Widget(window, "lblError(0)").setFocus();
        Press(Qt::Key_A, Qt::ControlModifier)(window);
        Press(Qt::Key_C, Qt::ControlModifier)(window);
        EXPECT_TRUE(WindowUser::ClipboardHolds("61 (Disk full: R & D)"));
        for (const auto* frame : window.findChildren<QGroupBox*>()) EXPECT_NE(frame->accessibleName(), "");
        window.close();
    }});
    EXPECT_EQ(reached, expected);
    EXPECT_EQ(names["lblComment"] + names["lblError"] + names["lstCallStack"] + names["cmdContinue"],
              "Remarks:Record No.:CallStack:Exit Procedure");
}

TEST_F(WindowTest, ClosingWithoutAChoiceGivesTheChoiceMadeLast) {
    const Step byFrame = [](QDialog& window) { window.windowHandle()->close(); };
    for (const Step& close : {Press(Qt::Key_Escape), byFrame}) {
        SetErrorDialog(std::make_unique<Ferrow>());  // no choice yet: retry
        EXPECT_EQ(FailAnd({close, Click("cmdContinue(1)")}, 2), (Outcome{2, true}));
        EXPECT_EQ(FailAnd({close}), (Outcome{1, true}));
        EXPECT_EQ(FailAnd({Click("cmdContinue(2)")}), (Outcome{1, false}));
        EXPECT_EQ(FailAnd({close}), (Outcome{1, false}));
    }
}

TEST_F(WindowTest, LiesInTheMiddleOfTheScreenAndKeepsLongTextsReadable) {
    const Box screen = user.desktop->Screen();
    const std::string path = "/" + std::string(900, 'x');
    const std::string descriptor = "[Demo] " + std::string(60, 'y') + " " + std::string(60, 'z');
    const Step look = [&](QDialog& window) {
        const double twips = 1440.0 / window.logicalDpiX();
        EXPECT_NEAR(window.width() * twips, 7215, twips);
        EXPECT_NEAR(window.height() * twips, 5970, twips);
        EXPECT_NEAR((window.x() * 2 + window.width()) * twips, screen.width, 3 * twips);
        EXPECT_NEAR((window.y() * 2 + window.height()) * twips, screen.height, 3 * twips);
        EXPECT_EQ(Widget(window, "framContinue").geometry().bottomRight(), window.rect().bottomRight());
        auto& label = dynamic_cast<QTextEdit&>(Widget(window, "lblError(0)"));
        EXPECT_EQ(label.toPlainText().toStdString(), "61 (Disk full: " + path + ")");
        EXPECT_EQ(label.toolTip(), label.toPlainText());
        EXPECT_EQ(label.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
        auto& list = dynamic_cast<QListWidget&>(Widget(window, "lstCallStack"));
        EXPECT_GE(list.visualItemRect(list.item(1)).height(), 2 * list.fontMetrics().height());
        EXPECT_LE(list.visualItemRect(list.item(1)).width(), list.viewport()->width());
        EXPECT_EQ(list.item(1)->toolTip().toStdString(), "14:25:07 " + descriptor);
        Click("cmdContinue(2)")(window);
    };
    Procedure<void>({descriptor, "Demo", "Outer"}).Run([&](Statements& run) {
        run([&] { FailAnd({look}, 1, path); });
    });
}

TEST_F(WindowTest, EachActivationLocalizesAgainAndItsFailureIsToldOnce) {
    const auto activate = [](QDialog& window) {
        QEvent away(QEvent::WindowDeactivate), back(QEvent::WindowActivate);
        QApplication::sendEvent(&window, &away), QApplication::sendEvent(&window, &back);
    };
    LangOffset() = 0;
    FailAnd({[&](QDialog& window) {
        LangOffset() = 10000;
        activate(window);
        EXPECT_EQ(ShownText(Widget(window, "framComment")), "Remarks:");
        LangOffset() = 30000;  // every text fails
        activate(window);
        activate(window);
        Click("cmdContinue(2)")(window);
    }});
    EXPECT_EQ(user.boxes, QStringList{"Orvo_Tile|OK|Run-time error '6':\n\nOverflow"});
}

TEST_F(WindowTest, AnInterruptionLeavesWithoutAWord) {
    const Step interrupt = [&](QDialog&) {
        user.interrupted = true;
        QTest::qWait(1000);
    };
    EXPECT_EQ(FailAnd({interrupt}, 99), (Outcome{1, false}));
    EXPECT_EQ(FailAnd({}, 99), (Outcome{1, false}));  // not even shown
    EXPECT_TRUE(user.failures.size() == 1 && user.boxes.empty());
}

}  // namespace
}  // namespace orvo::qt
