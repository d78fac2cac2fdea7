#pragma once

#include <gtest/gtest.h>

#include "tests/contract/Rig.hpp"
#include "tests/support/Printers.hpp"

namespace quorvel::test {

/// What every desktop must do, in memory or real.
class Contract : public testing::TestWithParam<RigKind> {
protected:
    std::unique_ptr<Rig> rig = GetParam().make();
    Desktop desktop = rig->desktop();
    RunLoop& runLoop = desktop.runLoop;
};

inline std::string rigName(const testing::TestParamInfo<RigKind>& tested) {
    return tested.param.name;
}

}  // namespace quorvel::test
