#include "platform/host/sysinfo/mirel_host_sysinfo.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/host/sysinfo/mirel_host_processors.h"

namespace {

namespace fs = std::filesystem;

template <class Value>
std::ostream& show(std::ostream& out, const Value& value) {
  return value.status == 0 ? out << " | " << value.value : out << " | null";
}

template <class... Values>
std::string group(const char* word, unsigned int code, const Values&... values) {
  std::ostringstream out;
  out << word << (code == 0 ? " complete" : code == OSS_SYSINFO_PARTIAL ? " partial" : " unknown");
  (show(out, values), ...);
  return out.str() + "\n";
}

/// Processors: total, online, configured, speed, threads a core, cores a socket. Memory and swap: total,
/// free, available, reserved.
std::string facts(const host::Machine& machine) {
  OSSOSInfo os;
  OSSCPUInfo cpu;
  OSSPhysMemInfo memory;
  OSSVirtualMemInfo all;
  OSSPhysSwapInfo swap;
  const unsigned int codes[] = {osInfo(machine, &os), cpuInfo(machine, &cpu), physMemInfo(machine, &memory),
                                virtualMemInfo(machine, &all), physSwapInfo(machine, &swap)};
  return os.fullName + group(" os", codes[0], os.name, os.system, os.osVersion, os.release, os.machine) +
         group("cpu", codes[1], cpu.total, cpu.online, cpu.configured, cpu.speed, cpu.threadingDegree,
               cpu.coresPerSocket) +
         group("pmemory", codes[2], memory.total, memory.free, memory.available) +
         group("vmemory", codes[3], all.total, all.free, all.available, all.reserved) +
         group("swap", codes[4], swap.total, swap.free);
}

/// A machine is a text: a path with " = " and a line, or with indented lines below it, makes a file; a choice
/// of names in braces makes one of each. "/expected" holds the facts.
class Machines : public testing::TestWithParam<fs::directory_entry> {
 protected:
  Machines() {
    std::ifstream text(GetParam().path());
    std::string path;
    for (std::string line; std::getline(text, line);) {
      const std::size_t equals = line.find(" = ");
      if (line.starts_with("/")) {
        path = line.substr(0, equals);
      }
      if (line.starts_with("  ")) {
        append(path, line.substr(2));
      } else if (line.starts_with("/") && equals != std::string::npos) {
        append(path, line.substr(equals + 3));
      }
    }
    utsname names;
    std::istringstream words(readText(m_machine, "/uname").value_or(""));
    for (auto name : {names.sysname, names.nodename, names.release, names.version, names.machine}) {
      words.getline(name, sizeof names.machine, '|');
    }
    m_machine.names = words ? std::optional(names) : std::nullopt;
    struct sysinfo memory = {};
    std::istringstream counts(readText(m_machine, "/sysinfo").value_or(""));
    counts >> memory.totalram >> memory.freeram >> memory.totalswap >> memory.freeswap >> memory.mem_unit;
    m_machine.memory = counts ? std::optional(memory) : std::nullopt;
  }
  ~Machines() override { fs::remove_all(m_machine.root); }

  host::Machine m_machine = {
      fs::temp_directory_path() / ("mirel-machine-" + std::to_string(getpid())), {}, {}};

 private:
  void append(const std::string& path, const std::string& line) {
    const std::size_t open = path.find('{');
    if (open == std::string::npos) {
      fs::create_directories(fs::path(m_machine.root + path).parent_path());
      std::ofstream(m_machine.root + path, std::ios::app) << line << "\n";
      return;
    }
    const std::size_t close = path.find('}');
    std::istringstream choices(path.substr(open + 1, close - open - 1));
    for (std::string choice; std::getline(choices, choice, ',');) {
      append(path.substr(0, open) + choice + path.substr(close + 1), line);
    }
  }
};

TEST_P(Machines, TellWhatTheirTreesTell) {
  EXPECT_EQ(readText(m_machine, "/expected").value_or(""), facts(m_machine));
}

INSTANTIATE_TEST_SUITE_P(Each, Machines,
                         testing::ValuesIn(fs::directory_iterator(MIREL_HOST "/machines"),
                                           fs::directory_iterator()),
                         [](const auto& machine) { return machine.param.path().stem().string(); });

}  // namespace
