// The texts of /proc, /sys and os-release. In the input a line with "=" and a path begins a file.

#include <map>
#include <string>
#include <string_view>

#include "fuzz/mirel_fuzz.h"
#include "platform/host/sysinfo/mirel_host_processors.h"
#include "platform/host/sysinfo/mirel_host_sysinfo.h"

namespace {

std::map<std::string, std::string, std::less<>> s_files;

void readFiles(std::string_view input) {
  s_files.clear();
  std::string* file = &s_files[""];
  while (!input.empty()) {
    const std::string_view line = input.substr(0, input.find('\n'));
    if (line.starts_with('=')) {
      file = &s_files[std::string(line.substr(1))];
    } else {
      file->append(line).append(line.size() < input.size() ? "\n" : "");
    }
    input.remove_prefix(line.size() < input.size() ? line.size() + 1 : line.size());
  }
}

/// A number that is not known is 0, and one that is known makes sense.
template <class... Numbers>
void check(unsigned int code, long least, const Numbers&... numbers) {
  const bool all = (true && ... && (numbers.status == 0));
  const bool any = (false || ... || (numbers.status == 0));
  require(code == (all ? 0 : any ? OSS_SYSINFO_PARTIAL : OSS_SYSINFO_UNAVAILABLE), "the code tells the rest");
  (require(static_cast<long>(numbers.value) >= (numbers.status == 0 ? least : 0), "no number below"), ...);
  (require(numbers.status == 0 || numbers.value == 0, "no number made up"), ...);
}

}  // namespace

std::optional<std::string> host::readText(const Machine&, const std::string& path) {
  const auto file = s_files.find(path);
  return file == s_files.end() ? std::nullopt : std::optional(file->second);
}

host::Machine host::thisMachine() {
  return {};
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  readFiles({reinterpret_cast<const char*>(data), size});
  const host::Machine machine = {MIREL_FUZZ_MACHINE, std::nullopt, std::nullopt};
  OSSOSInfo os;
  OSSCPUInfo cpu;
  OSSPhysMemInfo memory;
  OSSPhysSwapInfo swap;
  OSSVirtualMemInfo both;
  const bool named = osInfo(machine, &os) == OSS_SYSINFO_PARTIAL;
  require(named == (*os.fullName != '\0'), "a name is not empty");
  const unsigned int codes[] = {cpuInfo(machine, &cpu), physMemInfo(machine, &memory),
                                physSwapInfo(machine, &swap), virtualMemInfo(machine, &both)};
  check(codes[0], 1, cpu.total, cpu.online, cpu.configured, cpu.speed, cpu.threadingDegree,
        cpu.coresPerSocket);
  check(codes[1], 0, memory.total, memory.free, memory.available);
  check(codes[2], 0, swap.total, swap.free);
  check(codes[3], 0, both.total, both.reserved, both.available, both.free);
  require(both.total.status != 0 || both.total.value == memory.total.value + swap.total.value, "a sum");
  return 0;
}
