#pragma once

#include <cstddef>

#include "tarn/redact/tarn_redact_kind.h"

namespace tarn {

/// A part of a text that something was found in.
struct Span {
  std::size_t offset = 0, length = 0;
  RedactKind kind = RedactKind::customer;
  bool pseudonym = false;  ///< one of ours already

  std::size_t end() const { return offset + length; }
};

}  // namespace tarn
