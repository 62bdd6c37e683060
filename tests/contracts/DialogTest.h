// A procedure that fails under the real error dialog, over the platform in memory, with a desktop under test
// and somebody who uses it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "errorreport/Ferrow.h"
#include "errorreport/Procedure.h"
#include "platform/fake/World.h"
#include "support/Strings.h"

namespace orvo {

/// What is left of a failing procedure: how often its statement ran, and whether the next one did.
struct Outcome {
    int runs = 0;
    bool next = false;
    bool operator==(const Outcome&) const = default;
};

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
