#pragma once

#include <string>

#include "tests/support/x11/ChildProcess.hpp"
#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::test {

/// A private session bus. Services that it activates inherit `environment`.
class DBusSession {
public:
    DBusSession(const Environment& environment, const ScratchFolder& folder);

    const std::string& address() const { return busAddress; }
    void kill() { process.end(); }

private:
    std::string busAddress;
    ChildProcess process;
};

}  // namespace quorvel::test
