#include "tests/hostile/Account.hpp"

#include <cstdio>
#include <iomanip>
#include <ostream>

namespace quorvel::test {
namespace {

constexpr std::size_t storyLength = 50;

}  // namespace

void Account::note(const std::string& text) {
    const std::chrono::duration<double> passed = Clock::now() - begin;
    char time[32];
    std::snprintf(time, sizeof time, "%8.3f  ", passed.count());
    story.push_back(time + text);
    if (live) *live << story.back() << std::endl;
    if (story.size() > storyLength) story.pop_front();
}

void Account::did(const std::string& deed, const std::string& how) {
    ++counts[deed];
    note(how.empty() ? deed : deed + ": " + how);
}

void Account::trouble(const std::string& what) {
    troubles.push_back(what);
    note("TROUBLE " + what);
}

void Account::lost(const std::string& what) {
    lossList.push_back(what);
    note("LOST " + what);
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
    out << "lost: " << lossList.size() << "\n";
}

void Account::printStory(std::ostream& out) const {
    for (const std::string& line : story) out << line << "\n";
}

}  // namespace quorvel::test
