#pragma once
/// Where a command puts the documents that it makes of others: standard output, a file for one, a directory
/// for several. Nothing appears before all of them are whole.

#include <cstdio>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/document/tarn_document_output.h"

namespace tarn {

class Console;

/// One document on its way. What goes to standard output waits in a file without a name.
class Output {
 public:
  /// `folder`: as of OutputFile.
  std::optional<std::string> openFile(const std::string& path, const std::string& folder);
  std::optional<std::string> openSpool();

  /// After a problem nothing is written any more.
  void write(std::string_view bytes);
  const std::optional<std::string>& problem() const { return m_problem; }
  const std::string& name() const { return m_name; }

  /// What is still kept goes to the disk.
  void flush();
  /// After `flush`, without a problem: a file gets its name, the spool goes to the console.
  std::optional<std::string> finish(Console& console);

 private:
  std::string m_name = "standard output", m_kept;
  std::optional<OutputFile> m_file;
  struct Close {
    void operator()(std::FILE* file) const { fclose(file); }
  };
  std::unique_ptr<std::FILE, Close> m_spool;
  std::optional<std::string> m_problem;
};

/// Writes a file that may hold secrets, as documents do: mode 0600. `-` is the console's output. False when
/// it could not be written; the console was told.
bool writeOutput(const std::string& path, std::string_view bytes, Console& console);

class Outputs {
 public:
  explicit Outputs(Console& console) : m_console(console) {}

  /// An output for each input: `out` is empty for standard output, a directory when there are several inputs.
  /// The directory is made if it is not there. False when one of them cannot be, or would replace an input or
  /// the map; the console was told.
  bool open(const std::vector<std::string>& inputs, const std::string& out, const std::string& map);
  Output& at(std::size_t index) { return m_outputs[index]; }
  /// Whether all was written, up to the last byte; else the console was told.
  bool flush(Output& output);
  /// Gives all of them, flushed, their names, mode 0600. False when one could not be; the console was told.
  bool finish();

 private:
  bool openAll(const std::vector<std::string>& inputs, const std::string& directory,
               const std::string& folder, const std::string& map);
  bool openOne(const std::string& path, const std::string& folder, const std::vector<std::string>& inputs,
               const std::string& map);
  bool makeDirectory();
  bool tell(const std::string& name, const std::optional<std::string>& problem);

  Console& m_console;
  std::string m_newDirectory;  ///< made when all outputs are whole
  std::deque<Output> m_outputs;
};

}  // namespace tarn
