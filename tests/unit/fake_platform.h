#pragma once
/// One fake behind every function of the headers in platform/ and behind the system-library calls that the
/// core makes (popen, fgets, feof, pclose, getenv, gethostname, exit; the linker wraps those).
///
/// It answers from what a test prepared, writes every call down as one line, fails the calls that a test
/// names, and counts what is open. What nobody prepared is an ordinary small machine. A stale handle fails
/// the test; blocks come from the real allocator, so that the sanitizers watch them. A call that gives
/// something back does so even when it has to fail.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/admin.h"
#include "platform/services.h"
#include "platform/sqlcli.h"
#include "platform/sysinfo.h"

/// One value of a prepared row: a text, or nothing for SQL NULL.
using Cell = std::optional<std::string>;

class FakePlatform {
 public:
  /// The names of the columns, then the rows.
  using Table = std::vector<std::vector<Cell>>;

  /// A row out of its text, in which "NULL" is SQL NULL.
  static std::vector<Cell> cells(const std::string& line, char separator);

  /// The functions of the platform speak to the fake made last; when it is gone, to the one before.
  FakePlatform();
  ~FakePlatform();
  FakePlatform(const FakePlatform&) = delete;
  FakePlatform& operator=(const FakePlatform&) = delete;

  /// What a statement yields; "SQLTables" stands for that call. Unprepared statements are refused.
  void answer(const std::string& statement, Table table) { statements[statement] = {std::move(table), {}}; }
  /// A statement that fails, and the diagnostic messages behind it.
  void refuse(const std::string& statement, std::vector<std::string> messages) {
    statements[statement] = {{}, std::move(messages)};
  }

  /// Fails the `nth` call from now on (0: all of them) whose line begins with `call`, such as "SQLFetch" or
  /// "SQLAllocHandle(statement"; "" counts all calls of the platform. A code that means success in its family
  /// is returned by a call that does its work.
  void fail(const std::string& call, long nth = 1, long code = -1) { m_faults.push_back({call, nth, code}); }

  /// The calls that begin like this in order, one line each; those of the memory only when asked for.
  std::string calls(const std::string& beginning = "") const;
  void forgetCalls() { m_calls.clear(); }
  /// How many calls begin like this, since the calls were forgotten.
  long count(const std::string& call) const;
  /// What is open or allocated, such as "block 2, statement 1"; empty when there is nothing.
  std::string open() const;

  // What a test prepares, beyond the above.
  std::map<std::string, std::string> files;         ///< path to contents; also holds what was written
  std::map<std::string, std::string> commands;      ///< command to its output; others print nothing
  std::vector<std::vector<std::string>> responses;  ///< what connections receive, an empty piece being a wait
  const char* home = "/home/kato";                  ///< null: not set
  unsigned int sendLimit = 1U << 30U;               ///< bytes that one send takes at most
  sqleLevelInfo level = {"", "1.1.0.4", "s250101", "KT0042", 4, "", "KATO v1.1"};
  OSSOSInfo os = {0, {"Linux", 0},   {"node1", 0}, {"#1 SMP", 0}, {"6.1.0", 0}, {"x86_64", 0}, {},
                  0, "Some Linux 12"};
  OSSCPUInfo cpu = {0, {8, 0}, {6, 0}, {16, 0}, {2400, 0}, {2, 0}, {4, 0}, {}, 0, {}, 0, 0, {}, {}, {}, {}};
  OSSPhysMemInfo physical = {0, {1001, 0}, {1002, 0}, {1003, 0}, {1004, 0}};
  OSSVirtualMemInfo virtualMemory = {0, {2001, 0}, {2002, 0}, {2003, 0}, {2004, 0}};
  OSSPhysSwapInfo swap = {0, {3001, 0}, {3002, 0}};
  OSSDiskInfo disk = {0, {4096, 0}, {4001, 0}, {4002, 0}, {}, {}, {}, {}, {}, {}, {}, {}, {}};

  std::vector<std::string> sent;  ///< bytes sent, one text a connection

  // For the functions of the platform.
  struct Statement {
    Table table;
    std::vector<std::string> messages;  ///< not empty: refused
  };
  struct Handle {
    short type = 0;  ///< 0: none any more
    const Table* result = nullptr;
    std::size_t row = 0;
    std::vector<std::string> messages;  ///< of the last call
  };

  /// Writes the call down; the code that it has to return when it must fail, else 0.
  long enter(const std::string& line);
  void opened(const std::string& what, long number = 1) { m_open[what] += number; }
  void closeAll(const std::string& what) { m_open.erase(what); }

  std::map<std::string, Statement> statements;
  std::map<int, Handle> handles;       ///< of the call-level interface
  std::vector<std::string> openFiles;  ///< paths by handle, counted from 1; empty: closed
  int lastHandle = 0, lastSocket = 0;
  katoDbDirInfoV9 directoryEntry = {"SAMPLE  ", {}};

 private:
  struct Fault {
    std::string call;
    long nth, code;
    long seen = 0;
  };

  FakePlatform* m_previous;
  std::vector<std::string> m_calls;
  std::vector<Fault> m_faults;
  std::map<std::string, long> m_open;
};

/// The fixture of the unit tests: a fresh platform, and afterwards nothing may be left open, allocated or
/// unread on standard output and standard error.
class PlatformTest : public testing::Test {
 protected:
  PlatformTest();
  ~PlatformTest() override;

  /// What was printed since the last time it was asked for.
  std::string standardOutput() { return std::exchange(m_output, std::stringbuf()).str(); }
  std::string standardError() { return std::exchange(m_error, std::stringbuf()).str(); }
  /// The status that `action` ends the process with, or -1 when it comes back. What it had open stays so:
  /// for the inside of a death test, where a process for every case would take too long.
  static int exitStatusOf(const std::function<void()>& action);

  FakePlatform platform;

 private:
  std::stringbuf m_output, m_error;
  std::streambuf *m_realOutput, *m_realError;
};
