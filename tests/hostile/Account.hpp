#pragma once

#include <deque>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace quorvel::test {

/// What was done and what came of it.
class Account {
public:
    /// `live` gets each line of the story at once; null for none.
    explicit Account(std::ostream* live) : live(live) {}

    void did(const std::string& deed, const std::string& how);
    /// Told, but not counted.
    void note(const std::string& text);
    /// What the program has logged; told at once or never.
    void hear(const std::string& line) const;
    /// Could not be done as things stood.
    void skipped(const std::string& deed) { ++skips[deed]; }
    /// A fault of the rig or of a program that is not under test. Told, and no loss.
    void trouble(const std::string& what);
    void lost(const std::string& what);
    /// Lost, but by this window manager and not by the program.
    void lostByOthers(const std::string& manager, const std::string& what);

    const std::vector<std::string>& losses() const { return lossList; }
    void printTable(std::ostream& out) const;
    void printStory(std::ostream& out) const;

private:
    std::ostream* live;
    std::map<std::string, int> counts;
    std::map<std::string, int> skips;
    std::vector<std::string> troubles;
    std::vector<std::string> lossList;
    std::map<std::string, int> lossesOfOthers;
    std::deque<std::string> story;
};

}  // namespace quorvel::test
