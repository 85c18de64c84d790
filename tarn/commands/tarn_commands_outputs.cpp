#include "tarn/commands/tarn_commands_outputs.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tarn/commands/tarn_commands_console.h"

namespace tarn {

namespace {

constexpr std::size_t kBlock = 256 << 10;
constexpr unsigned int kPrivate = 0600;

/// The name that an input's output has in a directory.
std::string baseName(const std::string& input) {
  return input == "-" ? "stdin.json" : input.substr(input.rfind('/') + 1);
}

std::string lastProblem() {
  return strerror(errno);
}

}  // namespace

bool writeOutput(const std::string& path, std::string_view bytes, Console& console) {
  if (path == "-") {
    console.bytes(bytes);
    return true;
  }
  OutputFile file;
  std::optional<std::string> problem = file.open(path);
  problem = problem ? problem : file.write(bytes);
  problem = problem ? problem : file.finish(kPrivate);
  if (problem) {
    console.trouble(path, shown(*problem));
  }
  return !problem;
}

std::optional<std::string> Output::openFile(const std::string& path, const std::string& folder) {
  m_name = path;
  m_problem = m_file.emplace().open(path, folder);
  return m_problem;
}

std::optional<std::string> Output::openSpool() {
  m_spool.reset(std::tmpfile());
  m_problem = m_spool == nullptr ? std::optional(lastProblem()) : std::nullopt;
  return m_problem;
}

void Output::write(std::string_view bytes) {
  m_kept += bytes;
  if (m_kept.size() >= kBlock) {
    flush();
  }
}

void Output::flush() {
  if (m_problem) {
    // Nothing more is written.
  } else if (m_file) {
    m_problem = m_file->write(m_kept);
  } else if (fwrite(m_kept.data(), 1, m_kept.size(), m_spool.get()) != m_kept.size() ||
             fflush(m_spool.get()) != 0) {
    m_problem = lastProblem();
  }
  m_kept.clear();
}

std::optional<std::string> Output::finish(Console& console) {
  if (m_file) {
    return m_file->finish(kPrivate);
  }
  rewind(m_spool.get());
  std::string block(kBlock, '\0');
  while (const std::size_t count = fread(block.data(), 1, block.size(), m_spool.get())) {
    console.bytes(std::string_view(block).substr(0, count));
  }
  return ferror(m_spool.get()) != 0 ? std::optional(lastProblem()) : std::nullopt;
}

bool Outputs::tell(const std::string& name, const std::optional<std::string>& problem) {
  if (problem) {
    m_console.trouble(name, shown(*problem));
  }
  return !problem;
}

bool Outputs::openOne(const std::string& path, const std::string& folder,
                      const std::vector<std::string>& inputs, const std::string& map) {
  const bool overInput = std::any_of(inputs.begin(), inputs.end(), [&path](const std::string& input) {
    return input != "-" && sameFile(input, path);
  });
  if (overInput || (!map.empty() && samePlace(map, path))) {
    return tell(path, overInput ? "is an input" : "is the map");
  }
  return tell(path, m_outputs.emplace_back().openFile(path, folder));
}

bool Outputs::openAll(const std::vector<std::string>& inputs, const std::string& directory,
                      const std::string& folder, const std::string& map) {
  std::vector<std::string> names;
  for (const std::string& input : inputs) {
    names.push_back(baseName(input));
    if (std::count(names.begin(), names.end(), names.back()) > 1) {
      return tell(names.back(), "two inputs have this name");
    }
    if (!openOne(directory + "/" + names.back(), folder, inputs, map)) {
      return false;
    }
  }
  return true;
}

bool Outputs::open(const std::vector<std::string>& inputs, const std::string& out, const std::string& map) {
  if (out.empty()) {
    return std::all_of(inputs.begin(), inputs.end(), [this](const auto&) {
      return tell("standard output", m_outputs.emplace_back().openSpool());
    });
  }
  struct stat there = {};
  const bool isThere = stat(out.c_str(), &there) == 0;
  if (isThere && S_ISDIR(there.st_mode)) {
    return openAll(inputs, out, {}, map);
  }
  if (inputs.size() == 1) {
    return openOne(out, {}, inputs, map);
  }
  m_newDirectory = out.substr(0, out.find_last_not_of('/') + 1);
  return isThere ? tell(out, "not a directory")
                 : openAll(inputs, m_newDirectory, folderOf(m_newDirectory), map);
}

bool Outputs::flush(Output& output) {
  output.flush();
  return tell(output.name(), output.problem());
}

bool Outputs::makeDirectory() {
  const bool made = m_newDirectory.empty() || mkdir(m_newDirectory.c_str(), 0700) == 0;
  return made || tell(m_newDirectory, lastProblem());
}

bool Outputs::finish() {
  return makeDirectory() && std::all_of(m_outputs.begin(), m_outputs.end(), [this](Output& output) {
           return tell(output.name(), output.finish(m_console));
         });
}

}  // namespace tarn
