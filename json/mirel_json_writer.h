#pragma once
/// JSON text out of a value tree.
///
/// The layout is fixed: two blanks a level, one member or element a line, no line end behind the last one,
/// an empty container with an empty line between its brackets. Every scalar is written as a string.
/// Four characters are escaped: backslash, line feed, carriage return, double quote. Everything else goes
/// out as it is, so a tab or another control byte stands raw in the text (RFC 8259 would have it escaped),
/// and so do bytes above 127. Cost: two passes, the first to measure; linear in the text.

#include <string_view>

#include "common/mirel_string.h"

class mirel_string_builder;

/// `levels` times two blanks.
mirel_string indent(unsigned long levels);

/// The text with its four special characters escaped.
mirel_string escapeJson(const mirel_string& text);
void appendEscaped(mirel_string_builder& out, const mirel_string& text);
void appendEscaped(mirel_string_builder& out, const char* text, unsigned long length);

/// Undoes what `escapeJson` did, and is given nothing else.
mirel_string unescapeJson(const char* text, unsigned long length);

/// Undoes the escapes of a text somebody else wrote, one kind after the other: doubled backslashes first,
/// then line feeds, carriage returns and quotes, ignoring the letter's case. So a text that held a backslash
/// and an n comes back with a line feed; templates may rely on that.
mirel_string reverseEscape(const mirel_string& text);
/// The same of a part of a text.
mirel_string undoEscapes(std::string_view text);
