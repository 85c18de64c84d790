#pragma once
/// The members of a command's `--json`: one table writes them and documents them.
///
///     constexpr Member<DocumentStatus> kMembers[] = {
///         {"bytes", "Size of the document.",
///          [](const DocumentStatus& status, JsonText& json) { json.element(status.bytes); }}, ...};
///
///     console.bytes(asJsonLine(kMembers, status));
///     command.lists = {membersList(kMembers)};

#include <string>

#include "tarn/commands/tarn_commands_command.h"
#include "tarn/document/tarn_document_json.h"

namespace tarn {

template <class Record>
struct Member {
  const char* name;
  const char* sentence;
  /// Writes one value, null where there is none.
  void (*write)(const Record&, JsonText&);
};

/// One object, and a line feed; in parts, when it is large.
template <class Record, std::size_t size>
void writeJsonLine(const Member<Record> (&members)[size], const Record& record, const JsonText::Take& take) {
  JsonText json(take);
  json.object();
  for (const Member<Record>& member : members) {
    member.write(record, json.key(member.name));
  }
  take(json.end().text() + "\n");
}

template <class Record, std::size_t size>
std::string asJsonLine(const Member<Record> (&members)[size], const Record& record) {
  std::string line;
  writeJsonLine(members, record, [&line](std::string_view part) { line += part; });
  return line;
}

template <class Record, std::size_t size>
List membersList(const Member<Record> (&members)[size]) {
  List list = {.title = "Members of --json", .type = "", .entries = {}};
  for (const Member<Record>& member : members) {
    list.entries.push_back({member.name, member.sentence});
  }
  return list;
}

}  // namespace tarn
