#pragma once
/// SHA-256 (FIPS 180-4): a name for a document by its bytes, and for a page's Content-Security-Policy.

#include <string>
#include <string_view>

namespace tarn {

/// The 32 bytes of the digest.
std::string sha256(std::string_view message);

}  // namespace tarn
