#pragma once
/// Writes strict JSON (RFC 8259) for `--json` and for pages: valid UTF-8 whatever comes in.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// Appends a string with its quotes, for eyes, too: bytes below 0x20 become `\b \t \n \f \r` or `\u00xx`,
/// characters that a terminal would obey or not show (isHidden) `\uXXXX`, and bytes that are no UTF-8 U+FFFD,
/// one for each maximal subpart (Unicode 3.9).
void appendJsonString(std::string_view text, std::string& out);

/// Appends the raw bytes of a string as strict JSON: escapes and characters stay as they are, other bytes as
/// above.
void appendStrict(std::string_view raw, std::string& out);
/// Whether that changes nothing.
bool isStrict(std::string_view raw);

/// Puts one value together, member by member; commas are its own business.
///
///     JsonText json;
///     json.object().member("file", name).member("bytes", 12).key("silent").array();
///     for (...) json.element(pointer);
///     json.end().end();
///     console.bytes(json.text() + "\n");
class JsonText {
 public:
  using Take = std::function<void(std::string_view part)>;

  JsonText() = default;
  /// Hands out parts when they are large enough, so that long arrays cost no memory; `text` is the rest.
  explicit JsonText(Take take) : m_take(std::move(take)) {}

  JsonText& object() { return open('{'); }
  JsonText& array() { return open('['); }
  /// Ends the innermost object or array.
  JsonText& end();
  JsonText& key(std::string_view name);

  JsonText& element(std::string_view text);
  JsonText& element(const char* text) { return element(std::string_view(text)); }
  JsonText& element(std::uint64_t number);
  JsonText& element(double number);
  JsonText& element(bool flag);
  /// Null when there is none.
  template <class Value>
  JsonText& element(const std::optional<Value>& value) {
    return value ? element(*value) : null();
  }
  JsonText& null();
  /// JSON that is strict already.
  JsonText& raw(std::string_view json);

  template <class Value>
  JsonText& member(std::string_view name, const Value& value) {
    return key(name).element(value);
  }
  const std::string& text() const { return m_text; }

 private:
  JsonText& open(char bracket);
  void separate();

  Take m_take;
  std::string m_text, m_open;  ///< `m_open`: the brackets that are still to come
  bool m_first = true;         ///< nothing stands yet in the innermost container, or behind a key
};

}  // namespace tarn
