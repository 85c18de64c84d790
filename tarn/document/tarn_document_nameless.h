#pragma once
/// A file without a name, in TMPDIR or /tmp: what does not belong into memory lies there, and is gone with
/// the program.

#include <cstdint>
#include <string_view>

namespace tarn {

/// A descriptor, or -1 and errno when there can be none.
int namelessFile();

/// Appends to the file, or reads at an offset. False and errno when that fails, or when there is less to
/// read.
bool writeAll(int descriptor, std::string_view bytes);
bool readAll(int descriptor, std::uint64_t offset, char* into, std::size_t size);

}  // namespace tarn
