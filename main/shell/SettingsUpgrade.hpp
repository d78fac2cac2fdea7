#pragma once

#include "main/settings/Settings.hpp"
#include "platform/Files.hpp"
#include "platform/Log.hpp"
#include "platform/Screens.hpp"

/// What earlier programs and earlier versions have stored becomes what this one reads. Each of the
/// two is done once in the life of an installation and reaches the disk whole or not at all; where
/// the store refuses, nothing has changed and the next launch tries again.
namespace quorvel::SettingsUpgrade {

/// Copies the settings of the program that came before this one, if there are any and this one has
/// none. What is too large to be stored counts as none. False when they could not be stored.
bool migrate(Defaults& defaults, Log& log);

/// Places what earlier versions kept for all displays on those attached now.
void flatten(const Settings& settings, const Screens& screens, const Files& files, Log& log);

}  // namespace quorvel::SettingsUpgrade
