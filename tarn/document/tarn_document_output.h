#pragma once
/// A file that appears whole or not at all: written without a name where it will stand, forced to disk,
/// named. Where the file system knows no files without names, it has a temporary one that begins with
/// ".tarn-".

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

class OutputFile {
 public:
  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  /// Takes away what was not finished.
  ~OutputFile();

  /// Opens a file without a name of its own in the folder of `path`, mode 0600. A message of the system's
  /// when that fails. What stands at `path` is touched by `finish` alone; a folder, a device or a FIFO there
  /// is refused.
  std::optional<std::string> open(const std::string& path);
  std::optional<std::string> write(std::string_view bytes);
  /// Gives the file its name, in place of what stood there, with `mode` less the umask.
  std::optional<std::string> finish(unsigned int mode);

 private:
  bool name();

  std::string m_path, m_temporary;  ///< `m_temporary` is empty while there is no name
  int m_descriptor = -1;
};

/// Whether both paths lead to one file (device and inode), as an output over its own input would.
bool sameFile(const std::string& one, const std::string& other);

}  // namespace tarn
