#pragma once

#include <gio/gio.h>

#include "platform/linux/GlibTypes.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// What GIO needs to launch for us: an environment without what our own launcher left in it, and
/// start-up notification, so that the window manager shows that something is on its way and takes
/// the new window's claim to the keyboard for the user's wish. `x` outlives it.
ObjectRef<GAppLaunchContext> makeLaunchContext(XConnection& x);

/// Our environment without the variables that say how we were launched ourselves; a child that
/// inherited them would be taken for us.
struct EnvironmentDeleter {
    void operator()(gchar** environment) const { g_strfreev(environment); }
};
std::unique_ptr<gchar*, EnvironmentDeleter> environmentForChildren();

}  // namespace quorvel::native
