// What the component's tests share: a fresh fake platform and a fresh error dialog for each test.
#pragma once

#include <gmock/gmock.h>

#include "errorreport/Ferrow.h"
#include "errorreport/Procedure.h"
#include "platform/fake/World.h"
#include "support/Strings.h"
#include "tests/Failure.h"
#include "tests/Rows.h"

namespace orvo {

constexpr Integer kRetry = 0, kNext = 1, kLeave = 2;

/// How often the test program has allocated memory so far.
long AllocationCount();

class ComponentTest : public testing::Test {
  protected:
    ComponentTest() { NewWorld(); }
    ~ComponentTest() override {
        SetErrorDialog(nullptr);
        platform::Install({});
    }

    void NewWorld() {
        world = fake::World::Make();
        platform::Install(world->MakePlatform());
        SetErrorDialog(std::make_unique<Ferrow>());
        LangOffset() = 0;
    }
    /// Answers the first failures with these clicks, every later one with the last.
    void Answer(std::vector<Integer> clicks, Integer later = kLeave) {
        world->answer = [=, n = std::size_t{0}](const FailureView&) mutable -> std::optional<Integer> {
            return n < clicks.size() ? clicks[n++] : later;
        };
    }
    void AlwaysAnswer(Integer click) { Answer({}, click); }
    static Ferrow& Dialog() { return dynamic_cast<Ferrow&>(GlobalErrorDialog()); }
    static const CallStackList& Trace() { return Dialog().CallStackEntries(); }
    std::string ShownLabel(std::size_t n) const { return world->failures.at(n).rows[2].text; }
    /// The failures shown since the last look, as "9 GetTileID, 91 Clip".
    std::string Failures() {
        std::string all;
        for (const FailureView& shown : std::exchange(world->failures, {})) {
            const std::string& error = shown.rows[0].text;
            all += (all.empty() ? "" : ", ") + error.substr(0, error.find('(')) + shown.rows[2].text;
        }
        return all;
    }

    std::shared_ptr<fake::World> world;
};

}  // namespace orvo
