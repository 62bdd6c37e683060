// The window as a desktop under test, and somebody before it who does one step after the other: what it
// shows, how it is used, how it closes, and the report's ways out.
#include <QPrinter>
#include <QTest>
#include <QtWidgets>
#include <array>
#include <deque>

#include "platform/qt/Application.h"
#include "platform/qt/Desktop.h"
#include "platform/qt/Printing.h"
#include "tests/adapters/TempFolder.h"
#include "tests/contracts/DesktopContract.h"

namespace orvo::qt {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

using Step = std::function<void(QDialog& window)>;

QWidget& Widget(const QDialog& window, const char* name) {
    auto* widget = window.findChild<QWidget*>(name);
    if (widget == nullptr) throw RuntimeError(Fault::ObjectNotSet, name);
    return *widget;
}

Step Click(const char* name) {
    return [name](QDialog& window) { QTest::mouseClick(&Widget(window, name), Qt::LeftButton); };
}

Step Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    return [=](QDialog& window) {
        QWidget* focus = window.focusWidget();
        QTest::keyClick(focus == nullptr ? &window : focus, static_cast<Qt::Key>(key), modifiers);
        // A button stays down for a moment before it clicks.
        const auto buttons = window.findChildren<QPushButton*>();
        QTest::qWait(20);
        static_cast<void>(QTest::qWaitFor(
            [&] { return std::ranges::none_of(buttons, [](const QPushButton* b) { return b->isDown(); }); }));
    };
}

class WindowUser {
  public:
    explicit WindowUser(fake::World& /*world*/) {
        std::string whyNot;
        EXPECT_TRUE(EnsureApplication([] { return ""; }, whyNot)) << whyNot;
        qputenv("PATH", QByteArray::fromStdString(programs_.Path()) + ":/usr/bin:/bin");
        MakeOpener("exit 0");
        WindowOptions options;
        options.language = [] { return LangOffset(); };
        options.interrupted = [this] { return interrupted; };
        options.onFailure = [this](const std::string& failure) { failures.push_back(failure); };
        desktop = std::make_shared<qt::Desktop>(options);
        ActOnFrontWindow();
    }
    WindowUser(const WindowUser&) = delete;
    WindowUser& operator=(const WindowUser&) = delete;
    ~WindowUser() { EXPECT_TRUE(steps.empty()) << "a window closed early"; }

    /// The program that opens addresses notes them and then does as told.
    void MakeOpener(const std::string& commands) const {
        programs_.PutScript("xdg-open", "echo \"$1\" >> '" + programs_ / "opened" + "'\n" + commands);
    }
    std::shared_ptr<IDesktop> Desktop() const { return desktop; }
    void Plan(const std::vector<Act>& acts) {
        constexpr std::array kButtons{"cmdContinue(0)", "cmdContinue(1)", "cmdContinue(2)", "cmdProtocol(0)",
                                      "cmdProtocol(1)", "cmdProtocol(2)", "cmdProtocol(3)"};
        for (const Act act : acts) {
            if (act >= Act::Yes)
                boxButton_ = act == Act::Yes ? 0 : 1;
            else
                steps.push_back(Click(kButtons.at(static_cast<std::size_t>(act))));
        }
    }
    std::string Shown() const { return boxes.join('\n').toStdString() + ReadFile(programs_ / "opened"); }
    static std::string Told(const std::string& number, const std::string& text) {
        return "Run-time error '" + number + "':\n\n" + text;
    }
    static bool ClipboardHolds(const std::string& text) {
        return QApplication::clipboard()->text().toStdString() == text;
    }
    std::vector<Unattended> WithoutUser() {
        interrupted = true;
        return {{[this] { return desktop; }, false}};
    }

    static constexpr Long kPrinting = 482;
    std::shared_ptr<qt::Desktop> desktop;
    bool interrupted = false;
    std::vector<std::string> failures;  ///< that the desktop passed on
    std::deque<Step> steps;
    QStringList boxes;  ///< title, buttons and text of the message boxes that were shown

  private:
    void ActOnFrontWindow() {
        QTimer::singleShot(5, &life_, [this] {
            ActOnFrontWindow();
            auto* front = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (front == nullptr || !front->isVisible() || front != QApplication::activeWindow()) return;
            if (auto* box = qobject_cast<QMessageBox*>(front)) return Answer(*box);
            if (acting_) return;
            if (steps.empty()) {
                ADD_FAILURE() << "the window is still open after the last step";
                front->close();
                return;
            }
            const Step step = steps.front();
            steps.pop_front();
            acting_ = true;
            step(*front);
            acting_ = false;
        });
    }
    void Answer(const QMessageBox& box) {
        QStringList shown{box.windowTitle()};
        for (const auto* button : box.buttons()) shown.push_back(button->text());
        boxes.push_back((shown << box.text()).join('|'));
        box.buttons().value(boxButton_, box.buttons().back())->click();
    }

    TempFolder programs_;
    int boxButton_ = 0;  ///< of a message box, that the user clicks, if it has as many
    bool acting_ = false;
    QObject life_;
};

struct WindowTest : DialogTest {
    WindowTest() { ShowOn(user.desktop); }
    /// Has a statement fail while the user does these steps.
    Outcome FailAnd(std::deque<Step> steps, int failures = 1, const std::string& about = "R & D") {
        user.boxes.clear();
        user.steps = std::move(steps);
        return Fail(failures, about);
    }
    WindowUser user{*world};
};

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

TEST_F(WindowTest, KeysReachEverythingInOrderAndEverythingHasAName) {
    QStringList reached, expected, clicked;
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
        // A button with an access key of its own is clicked at once; among several the focus goes round.
        Widget(window, "lstCallStack").setFocus();
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
        EXPECT_TRUE(label.toolTip() == label.toPlainText() &&
                    label.verticalScrollBarPolicy() == Qt::ScrollBarAlwaysOn);
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
