#pragma once
/// Facts of the instance and of one current database, the database directory, and the file reader.

#include <vector>

#include "collectors/mirel_collectors_items.h"
#include "common/mirel_string.h"
#include "platform/admin.h"

/// Answers the collector words "version", "instance", "db" and "table".
///
/// `collect` takes the instance's facts once per run; `setDb` makes a database current. Every answer is
/// text; an item that is not known, or has no answer, is "null".
class InstanceCollector {
 public:
  /// Takes the level information and the number of catalogued databases.
  void collect();

  /// Makes the entry's database current and reads its configuration. The entry is not owned; what is asked
  /// later is answered without it.
  void setDb(const katoDbDirInfoV9* entry);

  /// "coderelease", "version", "buildlevel", "ptf", "fixpack".
  mirel_string version(const mirel_string& item) const;
  /// "numdbs", "type", "members".
  mirel_string instance(const mirel_string& item) const;
  /// "seed", "name", "size", "cfgRaw"; the last runs a command when it is asked.
  mirel_string database(const mirel_string& item) const;
  /// "name", "rows", "columns", "organization": the same placeholders for every database.
  mirel_string table(const mirel_string& item) const;

  /// The items of each word.
  static ItemWords versionItems();
  static ItemWords instanceItems();
  static ItemWords databaseItems();
  static ItemWords tableItems();

 private:
  struct Items;

  const katoDbDirInfoV9* m_entry = nullptr;
  sqlf_dbcfd m_configuration = {};
  mirel_string m_databaseName = mirel_string::within("", 0);
  unsigned short m_databases = 0;
  sqleLevelInfo m_level = {};
};

/// A scan over the local database directory: `open`, `next` until it gives null, `close`.
class DbDirectoryScan {
 public:
  void open();
  /// The next entry, which belongs to the scan, or null.
  katoDbDirInfoV9* next();
  /// The platform's code: 0 on success.
  int close();
  /// Entries that the open scan reported; 0 when it could not be opened.
  unsigned short numberDbs() const { return m_entries; }

 private:
  sqlca m_status = {};
  unsigned short m_position = 0;  ///< entries returned so far
  unsigned short m_entries = 0;
  katoDbDirOpenScanStruct m_openRequest = {};
  katoDbDirNextEntryStruct m_nextRequest = {};
  katoDbDirCloseScanStruct m_closeRequest = {};
};

/// The names of the active databases, as the product's command-line tool lists them.
std::vector<mirel_string> getActiveDatabases();

/// The content of a file up to its first NUL byte, or "" when it cannot be read. In the path "$HOME"
/// stands for the environment variable and "$INSTANCEPATH" for the install path.
mirel_string readFile(const mirel_string& path);
