/// Run by the build: puts page.html, the styles and the scripts together, and writes what stands between the
/// slots as a source (standard output). Arguments: page.html, then .css and .js files, each in the order in
/// which they go into the page.
///
/// A script is a module: its lines with "import" go, and so does the word "export"; all share one scope in
/// the page.

#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

#include "tarn/document/tarn_document_sha256.h"
#include "tarn/page/tarn_page_base64.h"

namespace {

std::string contentOf(const std::string& path) {
  std::ifstream file(path);
  if (!file) {
    std::cerr << path << ": cannot be read\n";
    std::exit(1);
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string withoutModules(const std::string& script) {
  std::istringstream lines(script);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("import ") && !line.starts_with("///")) {
      result += (line.starts_with("export ") ? line.substr(7) : line) + "\n";
    }
  }
  return result;
}

std::string hashOf(const std::string& text) {
  return "sha256-" + tarn::base64(tarn::sha256(text));
}

void fill(const std::string& slot, const std::string& text, std::string& page) {
  const std::string name = "{" + slot + "}";
  page.replace(page.find(name), name.size(), text);
}

/// One literal may not be too long.
void writePart(const std::string& text) {
  constexpr std::size_t kLongest = 10'000;
  for (std::size_t at = 0; at < text.size(); at += kLongest) {
    std::cout << "    R\"page(" << text.substr(at, kLongest) << ")page\"\n";
  }
  std::cout << "    ,\n";
}

}  // namespace

int main(int argc, char** argv) {
  std::string page = contentOf(argv[1]);
  std::string style;
  std::string script;
  for (int file = 2; file < argc; ++file) {
    const std::string path = argv[file];
    if (path.ends_with(".css")) {
      style += contentOf(path);
    } else {
      script += withoutModules(contentOf(path));
    }
  }
  script = "(() => {\n'use strict';\n" + script + "})();\n";
  fill("style-hash", hashOf(style), page);
  fill("script-hash", hashOf(script), page);
  fill("style", style, page);
  std::cout << "#include \"tarn/page/tarn_page_parts.h\"\n\nnamespace tarn {\n\n"
               "const std::string_view kPageParts[] = {\n";
  for (const std::string slot : {"{title}", "{summary}", "{data}", "{script}"}) {
    const std::size_t at = page.find(slot);
    writePart(page.substr(0, at));
    page.erase(0, at + slot.size());
  }
  writePart(script + page);
  std::cout << "};\n\n}  // namespace tarn\n";
  return std::cout.flush() ? 0 : 1;
}
