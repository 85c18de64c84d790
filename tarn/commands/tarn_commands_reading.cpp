#include "tarn/commands/tarn_commands_reading.h"

#include <algorithm>

#include "tarn/commands/tarn_commands_console.h"

namespace tarn {

namespace {

constexpr std::uint64_t kMegabyte = 1'000'000;

/// Of a document that takes a while.
void showProgress(Console& console, const std::string& file, const Source& source) {
  if (source.position() < kMegabyte || !console.isProgressDue()) {
    return;
  }
  const Shown read = say("{}: {} MB", shown(file), Shown(source.position() / kMegabyte));
  console.progress(source.size() == 0 ? read : say("{} of {} MB", read, Shown(source.size() / kMegabyte)));
}

/// A pointer's beginning and end, in whole names, where it is longer than a line can bear.
std::string shortened(const std::string& pointer) {
  constexpr std::size_t kHalf = 100;
  if (pointer.size() <= 2 * kHalf) {
    return pointer;
  }
  const std::size_t end = pointer.rfind('/', kHalf);
  const std::size_t begin = std::min(pointer.find('/', pointer.size() - kHalf), pointer.rfind('/'));
  return pointer.substr(0, end + 1) + "…" + pointer.substr(begin);
}

}  // namespace

bool openSource(Console& console, const std::string& file, Source::Passes passes, Source& source) {
  const std::optional<std::string> problem = source.open(file, console.input(), passes);
  if (problem) {
    console.trouble(file, shown(*problem));
  }
  return !problem;
}

std::string_view nextBlock(Console& console, const std::string& file, Source& source) {
  const std::string_view block = source.next();
  if (source.problem()) {
    console.trouble(file, shown(*source.problem()));
  } else if (!block.empty()) {
    showProgress(console, file, source);
  }
  return block;
}

void passOn(Console& console, const std::string& file, Source& source, std::uint64_t until) {
  std::size_t passed = 1;
  while (passed > 0 && source.position() < until) {
    passed = console.pass(source, std::min(kMegabyte, until - source.position()));
    showProgress(console, file, source);
  }
}

std::optional<Ending> readAll(Console& console, const std::string& file, Source& source, Reader& reader) {
  std::string_view block;
  do {
    block = nextBlock(console, file, source);
  } while (!block.empty() && reader.feed(block));
  return source.problem() ? std::nullopt : std::optional(reader.finish());
}

std::optional<Repeats> surveyRepeats(Console& console, const std::string& file, Source& source) {
  RepeatSurvey survey;
  Reader reader(survey);
  if (!readAll(console, file, source, reader)) {
    return std::nullopt;
  }
  Repeats repeats = survey.finish();
  if (repeats.lost()) {
    console.trouble(file, "its names could not be kept in a temporary file");
    return std::nullopt;
  }
  return repeats;
}

PassEnd readNumbered(Console& console, const std::string& file, Source& source, Reader& reader,
                     const Path& path) {
  std::string_view block;
  do {
    if (path.remembered() > kNamesAtMost) {
      return PassEnd::tooManyNames;
    }
    block = nextBlock(console, file, source);
  } while (!block.empty() && reader.feed(block));
  return source.problem() ? PassEnd::failed : PassEnd::done;
}

bool numberedPass(Console& console, const std::string& file, Source& source,
                  const std::function<PassEnd(Path&)>& pass) {
  Path path(Path::Repeated::numbered);
  const PassEnd end = pass(path);
  if (end != PassEnd::tooManyNames) {
    return end == PassEnd::done;
  }
  while (!nextBlock(console, file, source).empty()) {
    // what no pass has read is not there in the next one
  }
  source.rewind();
  std::optional<Repeats> repeats = surveyRepeats(console, file, source);
  if (!repeats) {
    return false;
  }
  source.rewind();
  Path known(*repeats);
  return pass(known) == PassEnd::done;
}

std::optional<std::string> readText(Console& console, const std::string& file) {
  Source source;
  if (!openSource(console, file, Source::Passes::one, source)) {
    return std::nullopt;
  }
  std::string bytes;
  bytes.reserve(source.size());
  for (std::string_view block = nextBlock(console, file, source); !block.empty();
       block = nextBlock(console, file, source)) {
    bytes += block;
  }
  return source.problem() ? std::nullopt : std::optional(std::move(bytes));
}

std::optional<Tree> readTree(Console& console, const std::string& file) {
  std::optional<std::string> bytes = readText(console, file);
  return bytes ? std::optional<Tree>(std::in_place, *std::move(bytes)) : std::nullopt;
}

Shown troubleOf(const Ending& ending) {
  const Shown state = ending.state == State::cut ? Shown("cut") : Shown("damaged");
  const Shown where = ending.innermost.empty() ? Shown() : " in " + shown(shortened(ending.innermost));
  return say("{}{}: {}", state, where, shown(ending.problem));
}

}  // namespace tarn
