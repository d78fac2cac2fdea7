#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "main/shell/SettingsHost.hpp"

namespace quorvel {

/// Notes what it is asked for; tucks nothing but a flag, and answers alerts as the test says.
class FakeSettingsHost final : public SettingsHost {
public:
    int reloads = 0;
    std::vector<int> appliedDwells;
    std::vector<TuckAnimationStyle> styles;
    /// By application: the edge text that it is tucked for.
    std::map<std::string, std::string> tucked;
    std::vector<std::pair<std::string, TuckEdge>> toggled;
    std::vector<Alert> alerts;
    /// The index of the button that is pressed; the last one without it.
    std::function<int(const Alert&)> answer;

    void reloadFromSettings() override { ++reloads; }
    void applyHotZone(int dwellMs) override { appliedDwells.push_back(dwellMs); }
    void setAnimationStyle(TuckAnimationStyle style) override { styles.push_back(style); }
    bool isTucked(const std::string& appPath, std::string_view edgeRaw) const override {
        const auto at = tucked.find(appPath);
        return at != tucked.end() && at->second == edgeRaw;
    }
    int runAlert(const Alert& alert) override {
        alerts.push_back(alert);
        const int last = static_cast<int>(alert.buttons.size()) - 1;
        return alertFirstButtonReturn + (answer ? answer(alert) : last);
    }
    void toggleTuck(const std::string& appPath, TuckEdge edge) override {
        toggled.emplace_back(appPath, edge);
        if (tucked.erase(appPath) == 0) tucked[appPath] = edge.rawValue();
    }
};

}  // namespace quorvel
