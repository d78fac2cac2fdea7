#include "ctl/Report.hpp"

#include <vector>

namespace quorvel::ctl {
namespace {

// What is missing or of another kind, as an older or newer program may send it, is left out.

const Value::Array& list(const Value::Dictionary& record, std::string_view key) {
    static const Value::Array none;
    const auto found = record.find(key);
    const auto* const array = found == record.end() ? nullptr : found->second.array();
    return array != nullptr ? *array : none;
}

std::string text(const Value::Dictionary& record, std::string_view key) {
    const auto found = record.find(key);
    const auto* const value = found == record.end() ? nullptr : found->second.text();
    return value != nullptr ? *value : std::string();
}

bool isTrue(const Value::Dictionary& record, std::string_view key) {
    const auto found = record.find(key);
    return found != record.end() && found->second == Value(true);
}

std::int64_t number(const Value::Dictionary& record, std::string_view key) {
    const auto found = record.find(key);
    const auto* const value = found == record.end() ? nullptr : found->second.integer();
    return value != nullptr ? *value : 0;
}

std::vector<Value::Dictionary> records(const Value::Dictionary& answer, std::string_view key) {
    std::vector<Value::Dictionary> result;
    for (const Value& each : list(answer, key)) {
        if (const auto* const record = each.dictionary()) result.push_back(*record);
    }
    return result;
}

std::string displayName(const Value::Dictionary& answer, const std::string& display) {
    for (const Value::Dictionary& each : records(answer, "displays")) {
        if (text(each, "display") == display ||
            (display == "builtin" && isTrue(each, "isBuiltin"))) {
            return text(each, "name");
        }
    }
    return display + " (not connected)";
}

std::string placeText(const Value::Dictionary& answer, const Value::Dictionary& place) {
    std::string result;
    const std::string corner = text(place, "corner");
    const std::string edge = text(place, "edge");
    if (corner != "none") result += corner + " corner";
    if (edge != "none") result += (result.empty() ? "" : ", ") + edge + " edge";
    if (result.empty()) return {};
    return result + " of " + displayName(answer, text(place, "display"));
}

}  // namespace

std::string statusReport(const Value::Dictionary& answer) {
    std::string report = "Applications:\n";
    const auto bindings = records(answer, "bindings");
    for (const Value::Dictionary& binding : bindings) {
        report += "  " + text(binding, "name") + "  " + text(binding, "shortcut");
        if (isTrue(binding, "isRefused")) report += " (held by another program)";
        if (!isTrue(binding, "isInstalled")) report += " (not installed)";
        if (isTrue(binding, "autoTuck")) report += "  Auto";
        report += "\n";
        for (const Value& place : list(binding, "places")) {
            const std::string where =
                place.dictionary() ? placeText(answer, *place.dictionary()) : std::string();
            if (!where.empty()) report += "      " + where + "\n";
        }
    }
    if (bindings.empty()) report += "  none\n";
    report += "Displays:\n";
    for (const Value::Dictionary& display : records(answer, "displays")) {
        report += "  " + text(display, "name") + "  " + text(display, "display") + "\n";
    }
    report += "Tucked windows:\n";
    const auto tucked = records(answer, "tucked");
    for (const Value::Dictionary& window : tucked) {
        report += "  " + text(window, "name") + " at the " + text(window, "edge") + " edge" +
                  (isTrue(window, "isRevealed") ? ", out at the moment" : "") + "\n";
    }
    if (tucked.empty()) report += "  none\n";
    return report;
}

bool hasProblems(const Value::Dictionary& answer) {
    for (const Value::Dictionary& finding : records(answer, "findings")) {
        if (isTrue(finding, "isProblem")) return true;
    }
    return false;
}

std::string doctorReport(const Value::Dictionary& answer) {
    std::string report;
    for (const Value::Dictionary& finding : records(answer, "findings")) {
        report += (isTrue(finding, "isProblem") ? "✗ " : "✓ ") + text(finding, "topic") + ": " +
                  text(finding, "text") + "\n";
    }
    return report;
}

std::string whyReport(const Value::Dictionary& answer) {
    std::string report = std::to_string(number(answer, "secondsAgo")) + " s ago, by " +
                         text(answer, "trigger") + ":\n";
    const Value::Array& steps = list(answer, "steps");
    for (const Value& step : steps) {
        if (step.text() != nullptr) report += "  " + *step.text() + "\n";
    }
    if (steps.empty()) report += "  nothing to tell\n";
    return report;
}

std::string untuckReport(const Value::Dictionary& answer) {
    return std::to_string(number(answer, "untucked")) + " window(s) put back\n";
}

}  // namespace quorvel::ctl
