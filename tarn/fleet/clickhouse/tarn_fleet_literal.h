#pragma once
/// Texts in ClickHouse's SQL: what came from outside is put into a statement as a literal, and never
/// otherwise.

#include <string>
#include <string_view>

namespace tarn {

/// `'it\'s'`, on one line whatever it holds.
std::string clickhouseLiteral(std::string_view text);

}  // namespace tarn
