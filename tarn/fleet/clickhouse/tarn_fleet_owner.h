#pragma once
/// A name for this process that other processes of the machine can look at: is it still running?

#include <string>
#include <string_view>

namespace tarn {

/// `WORLD:PROCESS:BEGIN`, of letters, digits, `-` and `:`.
std::string thisProcess();

/// Whether that process was one of this machine (and container) and has ended. What cannot be known is no.
bool hasEnded(std::string_view process);

}  // namespace tarn
