#pragma once

#include "livestat/steps/Engine.h"
#include "tests/support/ScriptedProbes.h"

#include <gtest/gtest.h>
#include <string>

namespace mirovane::test {

/// One step of a device that is On, on scripted probes.
class ActionFixture : public testing::Test {
protected:
    ActionFixture() {
        input.device.State = DeviceState::On;
        input.device.Comment = "kept";
        input.row = 6; // Comment
        input.criteria.Condition = "On";
        input.computerName = "here";
    }

    StepOutcome run(std::string_view command, const std::string& argument,
                    const std::string& searchFor = {}) {
        input.criteria.Command = command;
        input.criteria.Argument = argument;
        input.criteria.SearchFor = searchFor;
        answer.clear();
        return runStep(input, probes, &answer);
    }

    /// "kept" for an outcome that says so, else what it would write; marked by how the step ended.
    static std::string shown(const StepOutcome& outcome) {
        if (outcome.cancelled)
            return "cancelled";
        return outcome.acted ? (outcome.failed ? "failed:" : "done:") + outcome.result : "nothing";
    }

    ScriptedProbes probes;
    StepInput input;
    std::string answer;
};

} // namespace mirovane::test
