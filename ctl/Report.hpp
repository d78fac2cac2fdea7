#pragma once

#include <string>

#include "platform/Value.hpp"

namespace quorvel::ctl {

/// What the running program has answered, for people to read; ends in a line break unless empty.
std::string statusReport(const Value::Dictionary& answer);
std::string doctorReport(const Value::Dictionary& answer);
std::string whyReport(const Value::Dictionary& answer);
std::string untuckReport(const Value::Dictionary& answer);

/// Whether the doctor has found something that its user would want to change.
bool hasProblems(const Value::Dictionary& answer);

}  // namespace quorvel::ctl
