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
  /// is refused. Where the folder of `path` is made later, the file waits in `folder`, on the same file
  /// system.
  std::optional<std::string> open(const std::string& path, const std::string& folder = {});
  std::optional<std::string> write(std::string_view bytes);
  /// Gives the file its name, in place of what stood there, with `mode` less the umask.
  std::optional<std::string> finish(unsigned int mode);

 private:
  bool name();
  bool link(const std::string& path) const;

  std::string m_path, m_folder, m_temporary;  ///< `m_temporary` is empty while there is no name
  int m_descriptor = -1;
};

/// The folder that a path lies in: "." or with a slash at its end.
std::string folderOf(const std::string& path);

/// Whether both paths lead to one file (device and inode), as an output over its own input would.
bool sameFile(const std::string& one, const std::string& other);
/// The same for files that may not be there yet.
bool samePlace(const std::string& one, const std::string& other);

}  // namespace tarn
