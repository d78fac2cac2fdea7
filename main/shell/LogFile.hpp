#pragma once

#include <string>

namespace quorvel {

/// Appends standard output and standard error, line by line, to
/// `homeDirectory`/Library/Logs/NAME.log, where NAME is the last component of `executablePath`
/// ("Quorvel" when that is empty). The folder is created if need be. Where the file cannot be
/// opened the streams stay what they are; nothing is reported.
void redirectStandardStreamsToLogFile(const std::string& executablePath,
                                      const std::string& homeDirectory);

}  // namespace quorvel
