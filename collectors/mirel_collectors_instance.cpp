#include "collectors/mirel_collectors_instance.h"

#include <cstdlib>
#include <cstring>

#include "collectors/mirel_collectors_system.h"
#include "platform/services.h"

namespace {

/// A bounded field's text, up to its NUL.
mirel_string textOf(const char* field, unsigned long size) {
  return {field, size};
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

mirel_string InstanceCollector::version(const mirel_string& item) const {
  if (item == "coderelease") {
    return textOf(m_level.codeRelease, sizeof m_level.codeRelease);
  }
  if (item == "version") {
    return textOf(m_level.version, sizeof m_level.version);
  }
  if (item == "buildlevel") {
    return textOf(m_level.buildLevel, sizeof m_level.buildLevel);
  }
  if (item == "ptf") {
    return textOf(m_level.fix, sizeof m_level.fix);
  }
  if (item == "fixpack") {
    return m_level.fixPack;
  }
  return "null";
}

mirel_string InstanceCollector::instance(const mirel_string& item) const {
  if (item == "numdbs") {
    return static_cast<unsigned int>(m_databases);
  }
  return "null";  // "type" and "members" too: nothing tells them
}

mirel_string InstanceCollector::database(const mirel_string& item) const {
  if (item == "seed") {
    return m_configuration.seed;
  }
  if (item == "name") {
    return m_databaseName;
  }
  if (item == "cfgRaw") {
    return executeGet(mirel_string("kato get db cfg for ") + m_databaseName);
  }
  return "null";  // "size" too: nothing tells it
}

mirel_string InstanceCollector::table(const mirel_string& item) const {
  if (item == "name") {
    return "dummyTable";
  }
  if (item == "rows" || item == "columns") {
    return "0";
  }
  if (item == "organization") {
    return "R";
  }
  return "null";
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
  const mirel_string expanded =
      path.replace_all("$HOME", getenv("HOME")).replace_all("$INSTANCEPATH", getInstallDirectory());
  const OSSFileOpenParam existing = {OSS_VERSION_STAMP, expanded.c_str(), 1, 1, 0, 0, 0};
  OSSHFile file;
  if (file.open(&existing) != 0) {
    return "";
  }
  return contentOf(file);
}
