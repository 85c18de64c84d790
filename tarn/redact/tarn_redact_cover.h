#pragma once
/// Covers the escapes of JSON strings, byte for byte, so that patterns see what is meant and offsets stay:
/// `\n` becomes two line feeds, `\"` two quotes, `\\` two backslashes, `\u00e9` six bytes above 127.

#include <string>
#include <string_view>

namespace tarn {

/// How many bytes at the end may belong to an escape that goes on behind them: 0 to 5.
std::size_t openEscape(std::string_view bytes);

/// Appends the covered bytes; as many as come in. No escape may be open at the end, but for that of the last
/// bytes of all.
void appendCovered(std::string_view bytes, std::string* text);

}  // namespace tarn
