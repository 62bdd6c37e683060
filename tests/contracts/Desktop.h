// A procedure that fails under the real error dialog, over the platform in memory, with a desktop under test
// and somebody who uses it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "errorreport/Ferrow.h"
#include "errorreport/Procedure.h"
#include "platform/fake/World.h"
#include "support/Strings.h"

namespace orvo {

/// What the user does: the dialog's buttons, and answers to a question.
enum class Act { Retry, Next, Leave, Print, Save, Mail, Web, Yes, No };

/// What is left of a failing procedure: how often its statement ran, and whether the next one did.
struct Outcome {
    int runs = 0;
    bool next = false;
    bool operator==(const Outcome&) const = default;
};

struct DesktopSubject {
    DesktopSubject() = default;
    virtual ~DesktopSubject() = default;
    DesktopSubject(const DesktopSubject&) = delete;
    DesktopSubject& operator=(const DesktopSubject&) = delete;

    virtual std::shared_ptr<IDesktop> Desktop() = 0;
    /// The user's acts at the next showing: report buttons with the answer to their question, then a choice.
    virtual void Plan(const std::vector<Act>& acts) = 0;
    /// Messages and addresses that came to the user, as text.
    virtual std::string Shown() const = 0;
    virtual bool ClipboardHolds(const std::string& text) const = 0;
    /// How a handler's failure is told.
    virtual std::string Told(const std::string& number, const std::string& text) const {
        return number + " (" + text + ")";
    }
    /// Ways to answer without a user, and whether a failing procedure then goes on.
    virtual std::vector<std::pair<std::function<std::shared_ptr<IDesktop>()>, bool>> WithoutUser() = 0;

    Long printing = 482;   ///< the number that printing fails with: there is no printer
    bool attended = true;  ///< a test can play the user
};

struct NamedDesktop {
    const char* name;
    std::unique_ptr<DesktopSubject> (*make)(fake::World& world);
    friend void PrintTo(const NamedDesktop& desktop, std::ostream* out) { *out << desktop.name; }
};

NamedDesktop FakeDesktop();
/// The desktops that a test program has.
std::vector<NamedDesktop> Desktops();

class DialogTest : public testing::Test {
  protected:
    DialogTest() { LangOffset() = 10000; }
    ~DialogTest() override {
        SetErrorDialog(nullptr);
        platform::Install({});
        LangOffset() = 0;
    }
    /// Begins with a dialog that was never shown, on this desktop.
    void ShowOn(std::shared_ptr<IDesktop> desktop) const {
        platform::Platform made = world->MakePlatform();
        made.desktop = std::move(desktop);
        platform::Install(std::move(made));
        SetErrorDialog(std::make_unique<Ferrow>());
    }
    /// Has the first runs of a statement fail.
    static Outcome Fail(int failures = 1, const std::string& about = "R & D") {
        Outcome outcome;
        Procedure<void>({"[Demo] Public Sub Cut()", "Demo", "Cut"}).Run([&](Statements& run) {
            run([&] {
                if (++outcome.runs <= failures) throw RuntimeError(Fault::DiskFull, about);
            });
            outcome.next = true;
        });
        return outcome;
    }

    const std::shared_ptr<fake::World> world = fake::World::Make();
    std::string& log = world->files["C:\\Temp\\Orvo_Tile.EPT"];
    std::string& saved = world->files["C:\\Temp\\Orvo_Tile.ERR"] = "old";
};

}  // namespace orvo
