#pragma once
/// Texts cut to the size of a buffer without tearing a UTF-8 character (RFC 3629).

#include <cstddef>
#include <string_view>

namespace host {

/// The length of `text` without the character that its end tears apart, if there is one. Text in another
/// encoding loses at most the three bytes at its end that look like the beginning of a character.
std::size_t wholeCharacters(std::string_view text);

/// Copies `text` into the `size` bytes at `buffer`, cut between two characters where it is too long, and
/// terminates it. Returns the length that arrived.
std::size_t copyCut(std::string_view text, char* buffer, std::size_t size);

}  // namespace host
