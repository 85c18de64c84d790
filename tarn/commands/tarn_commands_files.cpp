#include "tarn/commands/tarn_commands_files.h"

#include <algorithm>
#include <filesystem>

#include "tarn/commands/tarn_commands_console.h"

namespace tarn {

namespace {

namespace fs = std::filesystem;

bool isHidden(const fs::path& path) {
  return path.filename().native().starts_with('.');
}

void addFolder(const std::string& folder, Console& console, std::vector<std::string>* files) {
  const std::size_t first = files->size();
  std::error_code failed;
  fs::recursive_directory_iterator entry(folder, failed);
  for (; !failed && entry != fs::recursive_directory_iterator(); entry.increment(failed)) {
    std::error_code unknown;
    if (isHidden(entry->path())) {
      entry.disable_recursion_pending();
    } else if (entry->is_regular_file(unknown)) {
      files->push_back(entry->path().native());
    }
  }
  if (failed) {
    console.trouble(folder, shown(failed.message()));
  }
  std::sort(files->begin() + static_cast<std::ptrdiff_t>(first), files->end());
}

}  // namespace

std::vector<std::string> documentsOf(const std::vector<std::string>& names, Console& console) {
  std::vector<std::string> files;
  for (const std::string& name : names) {
    std::error_code unknown;
    if (name != "-" && fs::is_directory(name, unknown)) {
      addFolder(name, console, &files);
    } else {
      files.push_back(name);
    }
  }
  return files;
}

}  // namespace tarn
