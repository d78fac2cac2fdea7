#include "tests/support/x11/XServer.hpp"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <stdexcept>
#include <system_error>

namespace quorvel::test {
namespace {

// Without the sync ranges the mode lines are rejected.
constexpr std::string_view hotPlugConfiguration = R"(Section "ServerFlags"
 Option "AutoAddDevices" "false"
 Option "AutoAddGPU" "false"
 Option "DontVTSwitch" "true"
EndSection
Section "Monitor"
 Identifier "m0"
 HorizSync 5-1000
 VertRefresh 5-200
 Modeline "1280x800" 83.46 1280 1344 1480 1680 800 801 804 828
 Modeline "1920x1080" 148.5 1920 2008 2052 2200 1080 1084 1089 1125 +hsync +vsync
 Option "PreferredMode" "1280x800"
EndSection
Section "Device"
 Identifier "dummy"
 Driver "dummy"
 VideoRam 256000
 Option "Monitor-DUMMY0" "m0"
 Option "Monitor-DUMMY1" "m0"
 Option "Monitor-DUMMY2" "m0"
EndSection
Section "Screen"
 Identifier "screen"
 Device "dummy"
 Monitor "m0"
 DefaultDepth 24
 SubSection "Display"
  Depth 24
  Virtual 5760 3240
 EndSubSection
EndSection
)";

constexpr int displayDescriptor = 9;

ChildProcess start(XServerKind kind, int width, int height, const Environment& environment,
                   const ScratchFolder& folder, std::string& displayName) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category());
    const FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);

    Command command{{}, environment, folder / "server.log", {{writing.get(), displayDescriptor}}};
    if (kind == XServerKind::virtualFramebuffer) {
        command.arguments = {"Xvfb", "-screen", "0",
                             std::to_string(width) + "x" + std::to_string(height) + "x24"};
    } else {
        const auto configuration = folder.write("xorg.conf", hotPlugConfiguration);
        command.arguments = {"Xorg", "-config", configuration.string(), "-logfile",
                             (folder / "xorg.log").string()};
    }
    for (const char* option : {"-noreset", "-ac", "-nolisten", "tcp", "-displayfd"}) {
        command.arguments.emplace_back(option);
    }
    command.arguments.push_back(std::to_string(displayDescriptor));

    // SIGTERM, so that it removes its socket and its lock file.
    ChildProcess process(command, SIGTERM);
    writing = FileDescriptor();
    const std::optional<std::string> number = readLine(reading.get());
    if (!number) throw std::runtime_error("the X server does not start; see its log");
    displayName = ":" + *number;
    return process;
}

}  // namespace

XServer::XServer(XServerKind kind, int width, int height, Environment environment,
                 const ScratchFolder& folder)
    : serverKind(kind),
      environment(std::move(environment)),
      folder(folder),
      process(start(kind, width, height, this->environment, folder, name)) {
    this->environment["DISPLAY"] = name;
    if (kind == XServerKind::hotPlug) {
        runToEnd({{"setxkbmap", "-rules", "evdev", "-model", "pc105", "-layout", "us"},
                  this->environment,
                  folder / "server.log",
                  {}});
        xrandr({"--addmode", "DUMMY1", "1280x800", "--addmode", "DUMMY2", "1280x800", "--addmode",
                "DUMMY1", "1920x1080", "--addmode", "DUMMY2", "1920x1080"});
    }
}

void XServer::xrandr(std::vector<std::string> options) {
    options.insert(options.begin(), "xrandr");
    runToEnd({std::move(options), environment, folder / "server.log", {}});
}

void XServer::plug(const std::string& output, int x, int y, const std::string& mode) {
    xrandr(
        {"--output", output, "--mode", mode, "--pos", std::to_string(x) + "x" + std::to_string(y)});
}

void XServer::unplug(const std::string& output) {
    xrandr({"--output", output, "--off"});
}

void XServer::move(const std::string& output, int x, int y) {
    xrandr({"--output", output, "--pos", std::to_string(x) + "x" + std::to_string(y)});
}

}  // namespace quorvel::test
