#include "tarn/fleet/load/tarn_fleet_log.h"

#include <algorithm>

#include "tarn/document/tarn_document_words.h"
#include "tarn/fleet/load/tarn_fleet_lines.h"
#include "tarn/fleet/tarn_fleet_time.h"

namespace tarn {

namespace {

/// Takes what stands before the delimiter, which goes, too.
std::string_view takeUntil(std::string_view& line, std::string_view delimiter) {
  const std::size_t end = std::min(line.find(delimiter), line.size());
  const std::string_view taken = line.substr(0, end);
  line.remove_prefix(std::min(end + delimiter.size(), line.size()));
  return taken;
}

bool isName(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char byte) {
    return isalnum(byte) != 0 || byte == '.' || byte == '-' || byte == '_';
  });
}

bool isPort(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Of `machine:port`; empty for what cannot be a machine's name.
std::string_view machineOf(std::string_view header) {
  const std::size_t colon = header.rfind(':');
  const bool hasPort = colon != std::string_view::npos && isPort(header.substr(colon + 1));
  const std::string_view name = hasPort ? header.substr(0, colon) : header;
  return isName(name) && name != "-" ? name : "";
}

std::string_view firstLabel(std::string_view name) {
  return name.substr(0, name.find('.'));
}

}  // namespace

std::optional<std::string> ExchangeLog::add(const std::string& file) {
  return readLines(file, [this](std::string_view line) { addLine(line); });
}

/// TIME ADDRESS "HOST" "REQUEST" STATUS LENGTH ID; the server writes quotes within a field as \x22.
void ExchangeLog::addLine(std::string_view line) {
  const std::optional<DocumentTime> time = timeOf(takeUntil(line, " "));
  takeUntil(line, " \"");
  const std::string_view host = takeUntil(line, "\" \"");
  const std::string_view request = line.substr(line.rfind(' ') + 1);
  if (time && !request.empty() && line.size() > request.size()) {
    m_entries[std::string(request)] = {time->seconds, std::string(machineOf(host))};
  }
}

const ExchangeLog::Entry* ExchangeLog::find(std::string_view request) const {
  const auto found = m_entries.find(std::string(request));
  return found == m_entries.end() ? nullptr : &found->second;
}

bool isSameHost(std::string_view one, std::string_view other) {
  const bool isShort = one.find('.') == std::string_view::npos || other.find('.') == std::string_view::npos;
  return sameWord(one, other) || (isShort && sameWord(firstLabel(one), firstLabel(other)));
}

}  // namespace tarn
