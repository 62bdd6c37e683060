// What the component's tests share: a fresh fake platform and a fresh error dialog for each test.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "errorreport/Ferrow.h"
#include "errorreport/Procedure.h"
#include "platform/fake/World.h"
#include "support/Strings.h"

namespace orvo {

constexpr Integer kRetry = 0;
constexpr Integer kNext = 1;
constexpr Integer kLeave = 2;

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
    /// Answers the first failures with these clicks, every later one with leaving.
    void Answer(std::vector<Integer> clicks) {
        world->answer = [clicks, n = std::size_t{0}](const FailureView&) mutable -> std::optional<Integer> {
            return n < clicks.size() ? clicks[n++] : kLeave;
        };
    }
    void AlwaysAnswer(Integer click) {
        world->answer = [click](const FailureView&) { return click; };
    }
    const CallStackList& Trace() { return dynamic_cast<Ferrow&>(GlobalErrorDialog()).CallStackEntries(); }
    /// The label, or module, of the n-th failure shown.
    std::string ShownModule(std::size_t n) const { return world->failures.at(n).rows[1].text; }
    std::string ShownLabel(std::size_t n) const { return world->failures.at(n).rows[2].text; }
    std::string ShownError(std::size_t n) const { return world->failures.at(n).rows[0].text; }

    std::shared_ptr<fake::World> world;
};

}  // namespace orvo
