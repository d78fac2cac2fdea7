#include "tests/support/x11/DBusSession.hpp"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <stdexcept>
#include <system_error>

namespace quorvel::test {
namespace {

constexpr int addressDescriptor = 9;

ChildProcess start(const Environment& environment, const ScratchFolder& folder,
                   std::string& address) {
    // KWin's shortcuts are held by a service of their own; here there is none.
    folder.write("data/dbus-1/services/org.kde.kglobalaccel.service",
                 "[D-BUS Service]\nName=org.kde.kglobalaccel\nExec=/bin/false\n");

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category());
    const FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    ChildProcess process({{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                           "--address=unix:path=" + (folder / "bus").string(),
                           "--print-address=" + std::to_string(addressDescriptor)},
                          environment,
                          folder / "bus.log",
                          {{writing.get(), addressDescriptor}}},
                         SIGTERM);
    writing = FileDescriptor();
    const std::optional<std::string> line = readLine(reading.get());
    if (!line) throw std::runtime_error("the session bus does not start; see bus.log");
    address = *line;
    return process;
}

}  // namespace

DBusSession::DBusSession(const Environment& environment, const ScratchFolder& folder)
    : process(start(environment, folder, busAddress)) {}

}  // namespace quorvel::test
