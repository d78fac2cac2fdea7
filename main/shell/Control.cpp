#include "main/shell/Control.hpp"

#include <algorithm>
#include <utility>

#include "main/settings/Displays.hpp"
#include "main/settings/TextRecords.hpp"
#include "main/shortcuts/HotKeySpec.hpp"
#include "platform/Text.hpp"

namespace quorvel {
namespace {

RemoteAnswer refusal(std::string why) {
    return {{}, std::move(why)};
}

RemoteAnswer done() {
    return {};
}

Value numbers(const Rect& rect) {
    Value::Array array;
    for (const double number : {rect.x, rect.y, rect.width, rect.height}) {
        array.emplace_back(static_cast<std::int64_t>(number));
    }
    return array;
}

Value texts(const std::vector<std::string>& list) {
    Value::Array array;
    for (const std::string& each : list) array.emplace_back(each);
    return array;
}

std::string stem(const std::string& path) {
    const std::string last = path.substr(path.find_last_of('/') + 1);
    return last.ends_with(".desktop") ? last.substr(0, last.size() - 8) : last;
}

}  // namespace

Control::Control(const Desktop& desktop, TuckController& tucking, const Chronicle& chronicle,
                 Deeds deeds)
    : desktop(desktop),
      settings(desktop.defaults),
      tucking(tucking),
      chronicle(chronicle),
      deeds(std::move(deeds)) {}

RemoteAnswer Control::answer(const RemoteRequest& request) {
    const std::string& command = request.command;
    if (command == "status") return status();
    if (command == "doctor") return doctor();
    if (command == "why") return why();
    if (command == "toggle") {
        return withApplication(request.argument, [this](const std::string& appPath) {
            later([this, appPath] { deeds.toggle(appPath); });
            return done();
        });
    }
    if (command == "reveal") {
        return withApplication(request.argument,
                               [this](const std::string& appPath) { return reveal(appPath); });
    }
    if (command == "untuck") return untuck();
    if (command == "reload") {
        later([this] { deeds.reload(); });
        return done();
    }
    if (command == "settings") {
        later([this] { deeds.openSettings(); });
        return done();
    }
    return refusal("There is no command “" + command + "”.");
}

RemoteAnswer Control::status() const {
    Value::Array bindings;
    const std::vector<Placement> placements = settings.placements();
    const auto attached = Displays::attached(desktop.screens);
    for (const AppBinding& binding : settings.appBindings()) {
        const auto spec = HotKeySpec::parse(binding.hotKey);
        Value::Array places;
        for (const Placement& placement : placements) {
            if (placement.appPath != binding.appPath) continue;
            places.emplace_back(Value::Dictionary{{"display", placement.display},
                                                  {"corner", placement.corner},
                                                  {"edge", placement.tuckEdge}});
        }
        bindings.emplace_back(
            Value::Dictionary{{"name", desktop.catalog.nameOf(binding.appPath)},
                              {"application", binding.appPath},
                              {"isInstalled", desktop.files.exists(binding.appPath)},
                              {"shortcut", spec ? spec->display() : "none"},
                              {"isRefused", isRefused(binding)},
                              {"autoTuck", saysYes(binding.autoTuck)},
                              {"places", std::move(places)}});
    }
    Value::Array displays;
    for (const DisplayInfo& display : attached) {
        displays.emplace_back(Value::Dictionary{{"name", display.name},
                                                {"display", display.ref.raw},
                                                {"isBuiltin", display.isBuiltin},
                                                {"frame", numbers(display.frameCocoa)}});
    }
    Value::Array tucked;
    for (const auto& window : tucking.tuckedWindows()) {
        tucked.emplace_back(Value::Dictionary{{"name", desktop.catalog.nameOf(window.appPath)},
                                              {"application", window.appPath},
                                              {"edge", std::string(window.edge.rawValue())},
                                              {"isRevealed", tucking.isRevealed(window.window)}});
    }
    return {{{"bindings", std::move(bindings)},
             {"displays", std::move(displays)},
             {"tucked", std::move(tucked)}},
            std::nullopt};
}

bool Control::isRefused(const AppBinding& binding) const {
    return HotKeySpec::parse(binding.hotKey) && !deeds.hasShortcut(binding.appPath);
}

RemoteAnswer Control::doctor() const {
    std::vector<Finding> findings = desktop.diagnostics.examine();
    const std::string reason = desktop.trust.reason();
    findings.push_back({"permission",
                        reason.empty() ? "The windows of other programs can be moved." : reason,
                        !reason.empty()});
    for (const std::string& message : AppBinding::validated(settings.appBindings()).dropped) {
        findings.push_back({"settings", message, true});
    }
    for (const AppBinding& binding : settings.appBindings()) {
        const std::string name = desktop.catalog.nameOf(binding.appPath);
        if (!desktop.files.exists(binding.appPath)) {
            findings.push_back({"settings", name + " is not installed.", true});
        }
        if (!isRefused(binding)) continue;
        const std::vector<std::string> takers = desktop.diagnostics.shortcutTakers();
        findings.push_back(
            {"shortcuts",
             HotKeySpec::parse(binding.hotKey)->display() + " of " + name +
                 " is held by another program. " +
                 (takers.empty() ? "The server does not tell which."
                                 : "The server does not tell which; these take shortcuts here: " +
                                       joined(takers, ", ") + "."),
             true});
    }
    Value::Array list;
    for (const Finding& finding : findings) {
        list.emplace_back(Value::Dictionary{
            {"topic", finding.topic}, {"text", finding.text}, {"isProblem", finding.isProblem}});
    }
    return {{{"findings", std::move(list)}}, std::nullopt};
}

RemoteAnswer Control::why() const {
    const auto& story = chronicle.last();
    if (!story) return refusal("Nothing has been triggered since Quorvel was started.");
    const std::uint64_t age = desktop.runLoop.uptimeNanoseconds() - story->beganNanoseconds;
    return {{{"trigger", story->trigger},
             {"secondsAgo", static_cast<std::int64_t>(age / 1'000'000'000)},
             {"steps", texts(story->steps)}},
            std::nullopt};
}

RemoteAnswer Control::reveal(const std::string& appPath) {
    bool any = false;
    for (const auto& window : tucking.tuckedWindows()) {
        if (window.appPath != appPath) continue;
        later([this, each = window.window] { tucking.reveal(each); });
        any = true;
    }
    if (any) return done();
    return refusal(desktop.catalog.nameOf(appPath) + " has no tucked window.");
}

RemoteAnswer Control::untuck() {
    const auto count = static_cast<std::int64_t>(tucking.tuckedWindows().size());
    later([this] { tucking.untuckAll(); });
    return {{{"untucked", count}}, std::nullopt};
}

void Control::later(std::function<void()> deed) {
    desktop.runLoop.async([alive = life.watch(), deed = std::move(deed)] {
        if (!alive.expired()) deed();
    });
}

RemoteAnswer Control::withApplication(
    const std::string& asked, const std::function<RemoteAnswer(const std::string&)>& act) const {
    if (asked.empty()) return refusal("Which application?");
    const std::string sought = lowercased(asked);
    std::vector<std::string> found;
    for (const AppBinding& binding : settings.appBindings()) {
        if (binding.appPath == asked) return act(binding.appPath);
        const bool isMeant = lowercased(desktop.catalog.nameOf(binding.appPath)) == sought ||
                             lowercased(stem(binding.appPath)) == sought;
        if (isMeant) found.push_back(binding.appPath);
    }
    if (found.empty()) return refusal("No application “" + asked + "” is in the list.");
    if (found.size() > 1) {
        return refusal("“" + asked + "” may be any of " + joined(found, ", ") +
                       "; name it by its path.");
    }
    return act(found.front());
}

}  // namespace quorvel
