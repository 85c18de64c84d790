/// Run by the build: packs .sql files (arguments) into a source (standard output), named "ENGINE/NAME" by
/// their folder and their own name.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace {

std::string nameOf(const std::filesystem::path& file) {
  return file.parent_path().filename().string() + "/" + file.stem().string();
}

bool writeRow(const std::filesystem::path& path) {
  std::ifstream file(path);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  std::cout << "    {\"" << nameOf(path) << "\", R\"sql(" << text << ")sql\"},\n";
  return !file.bad() && !text.empty();
}

}  // namespace

int main(int argc, char** argv) {
  std::cout << "#include \"tarn/fleet/tarn_fleet_sql.h\"\n\nnamespace tarn {\n\n"
               "const std::vector<PackedSql> kPackedSql = {\n";
  for (int file = 1; file < argc; ++file) {
    if (!writeRow(argv[file])) {
      std::cerr << argv[file] << ": cannot be read, or is empty\n";
      return 1;
    }
  }
  std::cout << "};\n\n}  // namespace tarn\n";
  return std::cout.flush() ? 0 : 1;
}
