#include "collectors/mirel_collectors_instance.h"

#include <cstdlib>
#include <cstring>

#include "collectors/mirel_collectors_system.h"
#include "common/mirel_common_builder.h"
#include "common/mirel_common_memory.h"
#include "platform/services.h"

namespace {

/// A bounded field's text, up to its NUL.
template <unsigned long size>
mirel_string textOf(const char (&field)[size]) {
  return {field, size};
}

mirel_string nobodyTells(const InstanceCollector&) {
  return "null";
}

mirel_string configurationOf(const mirel_string& database) {
  mirel_string_builder command;
  command.append("kato get db cfg for ");
  command.append(database);
  return executeGet(command.take());
}

/// A directory entry's alias is padded with blanks.
mirel_string aliasOf(const katoDbDirInfoV9& entry) {
  unsigned long length = strnlen(entry.alias, sizeof entry.alias);
  if (const void* blank = memchr(entry.alias, ' ', length)) {
    length = static_cast<unsigned long>(static_cast<const char*>(blank) - entry.alias);
  }
  return {entry.alias, length};
}

/// Reads an open file whole into a zero-filled block, so that the text ends where the file does.
mirel_string contentOf(OSSHFile& file) {
  unsigned long size = 0;
  if (file.getSize(&size) != 0 || size == mirel_string::npos) {
    return "";
  }
  void* block = nullptr;
  if (_ossMemAlloc(&block, nullptr, size + 1, 1, "mirel_collectors_instance", 276) != 0) {
    ++memoryLosses;
    return "";
  }
  const OSSFileReadParam wanted = {OSS_VERSION_STAMP, size, 0};
  unsigned long received = 0;
  const bool read = file.read(&wanted, block, &received) == 0;
  mirel_string content = read ? static_cast<const char*>(block) : "";
  const bool released = _ossMemFree(&block, 0, 0, "mirel_collectors_instance", 289) == 0;
  if (read && released) {
    file.close();
  }
  return content;
}

}  // namespace

void InstanceCollector::collect() {
  sqleGetLevelInfo(SQLE_LEVEL_VERSION, &m_level);
  DbDirectoryScan directory;
  directory.open();
  m_databases = directory.numberDbs();
  directory.close();
}

void InstanceCollector::setDb(const katoDbDirInfoV9* entry) {
  m_entry = entry;
  m_databaseName = aliasOf(*entry);
  getGdbPath(m_databaseName);
  getDbCfd(m_databaseName, &m_configuration);
}

struct InstanceCollector::Items {
  using From = const InstanceCollector&;
  static constexpr Item<InstanceCollector> version[] = {
      {"coderelease", [](From from) { return textOf(from.m_level.codeRelease); }},
      {"version", [](From from) { return textOf(from.m_level.version); }},
      {"buildlevel", [](From from) { return textOf(from.m_level.buildLevel); }},
      {"ptf", [](From from) { return textOf(from.m_level.fix); }},
      {"fixpack", [](From from) { return mirel_string(from.m_level.fixPack); }},
  };
  static constexpr Item<InstanceCollector> instance[] = {
      {"numdbs", [](From from) { return mirel_string(static_cast<unsigned int>(from.m_databases)); }},
      {"type", nobodyTells},
      {"members", nobodyTells},
  };
  static constexpr Item<InstanceCollector> database[] = {
      {"seed", [](From from) { return mirel_string(from.m_configuration.seed); }},
      {"name", [](From from) { return from.m_databaseName; }},
      {"size", nobodyTells},
      {"cfgRaw", [](From from) { return configurationOf(from.m_databaseName); }},
  };
  static constexpr Item<InstanceCollector> table[] = {
      {"name", [](From) { return mirel_string("dummyTable"); }},
      {"rows", [](From) { return mirel_string("0"); }},
      {"columns", [](From) { return mirel_string("0"); }},
      {"organization", [](From) { return mirel_string("R"); }},
  };
};

mirel_string InstanceCollector::version(const mirel_string& item) const {
  return answerOf(Items::version, *this, item, "null");
}

mirel_string InstanceCollector::instance(const mirel_string& item) const {
  return answerOf(Items::instance, *this, item, "null");
}

mirel_string InstanceCollector::database(const mirel_string& item) const {
  return answerOf(Items::database, *this, item, "null");
}

mirel_string InstanceCollector::table(const mirel_string& item) const {
  return answerOf(Items::table, *this, item, "null");
}

ItemWords InstanceCollector::versionItems() {
  return wordsOf(Items::version);
}

ItemWords InstanceCollector::instanceItems() {
  return wordsOf(Items::instance);
}

ItemWords InstanceCollector::databaseItems() {
  return wordsOf(Items::database);
}

ItemWords InstanceCollector::tableItems() {
  return wordsOf(Items::table);
}

void DbDirectoryScan::open() {
  m_openRequest = {};
  katoDbDirOpenScan(KATO_DB_DIR_VERSION, &m_openRequest, &m_status);
  m_nextRequest = {m_openRequest.handle, nullptr};
  m_entries = m_openRequest.dbEntries;
  m_position = 0;
}

katoDbDirInfoV9* DbDirectoryScan::next() {
  if (katoDbDirGetNextEntry(KATO_DB_DIR_VERSION, &m_nextRequest, &m_status) != 0) {
    return nullptr;
  }
  ++m_position;
  return m_nextRequest.entry;
}

int DbDirectoryScan::close() {
  m_closeRequest.handle = m_openRequest.handle;
  return katoDbDirCloseScan(KATO_DB_DIR_VERSION, &m_closeRequest, &m_status);
}

std::vector<mirel_string> getActiveDatabases() {
  const mirel_string output = executeGet("kato list active databases");
  std::vector<mirel_string> lines;
  const char* line = strchr(output.c_str(), '\n');
  while (line != nullptr) {
    ++line;
    const char* end = strchr(line, '\n');
    lines.emplace_back(line, end == nullptr ? strlen(line) : static_cast<unsigned long>(end - line));
    line = end;
  }
  std::vector<mirel_string> names;
  if (lines.size() <= 2) {
    return names;
  }
  for (const mirel_string& text : lines) {
    const char* value = strchr(text.c_str(), '=');
    if (value != nullptr && text.find("Database name", 0) != mirel_string::npos) {
      names.push_back(mirel_string(value + 1).ltrim());
    }
  }
  return names;
}

mirel_string readFile(const mirel_string& path) {
  const MemoryWatch memory;
  const mirel_string expanded =
      path.replace_all("$HOME", getenv("HOME")).replace_all("$INSTANCEPATH", getInstallDirectory());
  const OSSFileOpenParam existing = {OSS_VERSION_STAMP, expanded.c_str(), 1, 1, 0, 0, 0};
  OSSHFile file;
  // A path that lost a part of itself leads elsewhere.
  if (memory.ranOut() || file.open(&existing) != 0) {
    return "";
  }
  return contentOf(file);
}
