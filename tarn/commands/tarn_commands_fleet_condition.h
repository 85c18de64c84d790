#pragma once
/// A condition as it is written on the command line.

#include <optional>
#include <string_view>

#include "tarn/fleet/tarn_fleet_question.h"

namespace tarn {

/// `POINTER=VALUE`, `POINTER~TEXT`, `POINTER>VALUE`, `POINTER<VALUE`: the first operator counts that does not
/// stand in a name's brackets. `~0` and `~1` belong to the pointer where another operator follows. Nothing
/// when there is no operator, or the pointer neither is `*` nor begins with "/".
std::optional<FleetCondition> parseCondition(std::string_view text);

}  // namespace tarn
