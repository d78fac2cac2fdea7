#pragma once

#include "platform/RunLoop.hpp"

namespace quorvel {

/// What the application tells the one object that makes the program out of it.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;

    /// Once, from the loop, before anything else happens.
    virtual void applicationDidFinishLaunching() = 0;

    /// Once, when the program ends in an orderly way, while everything still works.
    virtual void applicationWillTerminate() = 0;

    /// Whether saved window state may be read back only in its secure form.
    virtual bool applicationSupportsSecureRestorableState() const = 0;
};

/// The running of the program: from its launch to one of its two ways out.
class Application {
public:
    explicit Application(RunLoop& runLoop) : runLoop(runLoop) {}

    /// Outlives the application; set before `run`.
    void setDelegate(ApplicationDelegate& newDelegate) { delegate = &newDelegate; }

    /// Launches, runs until the program is told to end, and returns its exit status.
    int run();

    /// The orderly way out: the delegate is told, then the loop stops; status 0. What was queued
    /// is dropped. Does nothing once the program is ending.
    void terminate();

    /// The way out when nothing can be put in order any more: the delegate is not told.
    void exit(int status);

    bool isEnding() const { return ending; }

private:
    RunLoop& runLoop;
    ApplicationDelegate* delegate = nullptr;
    bool ending = false;
    int exitStatus = 0;
};

}  // namespace quorvel
