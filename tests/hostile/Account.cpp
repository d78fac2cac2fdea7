#include "tests/hostile/Account.hpp"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <iomanip>
#include <ostream>

namespace quorvel::test {
namespace {

constexpr std::size_t storyLength = 50;

}  // namespace

void Account::note(const std::string& text) {
    // As the program's log gives it.
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const std::time_t seconds = std::chrono::duration_cast<std::chrono::seconds>(now).count();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    char clock[32];
    std::strftime(clock, sizeof clock, "%H:%M:%S", std::localtime(&seconds));
    char time[64];
    std::snprintf(time, sizeof time, "%s.%03d  ", clock, static_cast<int>(milliseconds % 1000));
    story.push_back(time + text);
    if (live) *live << story.back() << std::endl;
    if (story.size() > storyLength) story.pop_front();
}

void Account::did(const std::string& deed, const std::string& how) {
    ++counts[deed];
    note(how.empty() ? deed : deed + ": " + how);
}

void Account::hear(const std::string& line) const {
    if (live) *live << "    | " << line << std::endl;
}

void Account::trouble(const std::string& what) {
    troubles.push_back(what);
    note("TROUBLE " + what);
}

void Account::lost(const std::string& what) {
    lossList.push_back(what);
    note("LOST " + what);
}

void Account::lostByOthers(const std::string& manager, const std::string& what) {
    ++lossesOfOthers[manager];
    note("LOST WITHOUT THE PROGRAM " + what);
}

void Account::printTable(std::ostream& out) const {
    int total = 0;
    for (const auto& [deed, count] : counts) {
        const auto skip = skips.find(deed);
        out << std::setw(6) << count << "  " << deed;
        if (skip != skips.end()) out << " (" << skip->second << " times not possible)";
        out << "\n";
        total += count;
    }
    out << std::setw(6) << total << "  in all\n";
    for (const std::string& trouble : troubles) out << "trouble: " << trouble << "\n";
    for (const std::string& loss : lossList) out << "LOST: " << loss << "\n";
    for (const auto& [manager, count] : lossesOfOthers) {
        out << "lost without a part of the program in it, under " << manager << ": " << count
            << "\n";
    }
    out << "lost: " << lossList.size() << "\n";
}

void Account::printStory(std::ostream& out) const {
    for (const std::string& line : story) out << line << "\n";
}

}  // namespace quorvel::test
