#pragma once
/// Members that did not answer, in document order, with what they hold instead. Beyond a megabyte they lie in
/// a file without a name, so that a large document costs no memory.

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

/// "null", "", an empty array, an empty object.
enum class Silence : char { null, empty, array, object };

class SilentMembers {
 public:
  void add(Silence silence, std::string_view pointer);
  /// Where the list ends now; `backTo` takes off what was added behind that.
  std::uint64_t end() const { return m_fileSize + m_text.size(); }
  void backTo(std::uint64_t end);

  void forEach(const std::function<void(Silence, std::string_view pointer)>& take) const;
  /// Whether the temporary file could not be made, written or read: the list is then not complete.
  bool lost() const { return m_lost; }

 private:
  void moveToFile();

  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::string m_text;  ///< each member: silence, length in 4 bytes, pointer
  std::unique_ptr<std::FILE, Close> m_file;
  std::uint64_t m_fileSize = 0;
  mutable bool m_lost = false;
};

}  // namespace tarn
