// A desktop on which everything goes wrong that can: window managers, panels and the session bus
// come and go, applications hang and die, displays are plugged and unplugged, the settings are
// rewritten by others, and now and then the program itself is killed. It prints what was done and
// what was lost by it: windows that their user cannot get at any more, or the program.
//
//   quorvel-hostile-day [--seconds N] [--seed N] [--without] [--tell]
//
//   --seed     which day; what happens is the same again, though not to the millisecond
//   --without  the same day without the program, to see what window managers lose by themselves
//   --tell     each deed at once, and what the program logs
//
// Exit status 1 when something was lost.

#include <cstdio>
#include <exception>
#include <iostream>
#include <map>
#include <numeric>

#include "tests/hostile/Deeds.hpp"

namespace {

using namespace quorvel::test;

struct Options {
    int seconds = 600;
    std::uint32_t seed = std::random_device{}();
    bool without = false;
    bool tell = false;
};

/// How many deeds come between two looks at all windows.
constexpr int deedsBetweenLooks = 8;
constexpr int mostLinesInOneSecond = 150;
constexpr std::size_t endOfLog = 8000;

const Deed& drawDeed(Random& random) {
    int total = 0;
    for (const Deed& deed : allDeeds()) total += deed.weight;
    int drawn = pick(random, 1, total);
    for (const Deed& deed : allDeeds()) {
        drawn -= deed.weight;
        if (drawn <= 0) return deed;
    }
    return allDeeds().front();
}

void spend(Desk& desk, Account& account, const Options& options) {
    const auto begin = std::chrono::steady_clock::now();
    const std::chrono::seconds length(options.seconds);
    int sinceLook = 0;
    for (std::uint32_t number = 0;; ++number) {
        const auto passed = std::chrono::steady_clock::now() - begin;
        if (passed >= length) return;
        // Each deed has numbers of its own: how many the one before took of them changes nothing.
        std::seed_seq seed{options.seed, number};
        Random random(seed);
        const Deed& deed = drawDeed(random);
        // In the second half it is left alone, so that what it costs in the long run shows.
        if (deed.endsProgram && passed > length / 2) continue;
        try {
            if (const auto how = deed.run(desk, random)) {
                account.did(deed.name, *how);
            } else {
                account.skipped(deed.name);
            }
            desk.reach.look();
            desk.watchProgram();
            desk.hearProgram();
            if (++sinceLook < deedsBetweenLooks) continue;
            sinceLook = 0;
            desk.settle(Reach::Terms::running);
        } catch (const std::exception& failure) {
            account.trouble(deed.name + ": " + failure.what());
        }
    }
}

Options parse(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string name = arguments[i];
        if (name == "--without") {
            options.without = true;
        } else if (name == "--tell") {
            options.tell = true;
        } else if (name == "--seconds" && i + 1 < count) {
            options.seconds = std::stoi(arguments[++i]);
        } else if (name == "--seed" && i + 1 < count) {
            options.seed = static_cast<std::uint32_t>(std::stoul(arguments[++i]));
        } else {
            throw std::invalid_argument("unknown option " + name);
        }
    }
    return options;
}

int run(const Options& options) {
    std::cout << "a hostile day of " << options.seconds << " s, seed " << options.seed
              << (options.without ? ", without the program" : "") << std::endl;
    Account account(options.tell ? &std::cout : nullptr);
    Desk desk(account, !options.without);
    spend(desk, account, options);
    desk.settle(Reach::Terms::running);
    desk.terminateProgram();
    if (options.without) desk.settle(Reach::Terms::ended);

    const LogFigures log =
        readLog(desk.program.logFile, desk.program.session.folder() / "Quorvel.output");
    for (const std::string& line : log.unwanted) account.lost("a clean log: " + line);
    if (log.mostInOneSecond > mostLinesInOneSecond) {
        account.lost("a quiet log: " + std::to_string(log.mostInOneSecond) + " lines in " +
                     log.busiest);
    }
    account.printTable(std::cout);
    desk.figures.print(std::cout);
    std::cout << "its log: " << log.lines << " lines, " << log.mostInOneSecond
              << " at most in one second\n";
    if (account.losses().empty()) return 0;
    std::cout << "\nThe last deeds:\n";
    account.printStory(std::cout);
    std::cout << "\nThe end of its log:\n";
    const std::string text = ProgramOnX::contentOf(desk.program.logFile);
    std::cout << text.substr(text.size() - std::min(text.size(), endOfLog));
    std::cout << "\nTo see it again: --seed " << options.seed << "\n";
    return 1;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        return run(parse(count, arguments));
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return 2;
    }
}
