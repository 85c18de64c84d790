// Writes a day of the store of a fleet: mirel_bench_fleet STORE HOSTS DAY. Documents of 24 KB as the
// collection server keeps them, the same for the same numbers; one fact in a hundred changes a day, and what
// changes by itself every day. The first day is 0.

#include <fmt/format.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

constexpr std::int64_t kFirstDay = 1'790'812'800;  // 2026-10-01, in seconds
constexpr std::int64_t kDay = 86'400;
/// Of so many facts that can change one does so a day: of those that are kept one in a hundred.
constexpr std::uint64_t kChange = 45;

/// The finalizer of SplitMix64: numbers that look like chance and are the same everywhere.
std::uint64_t mixed(std::uint64_t number) {
  number += 0x9E3779B97F4A7C15;
  number = (number ^ number >> 30) * 0xBF58476D1CE4E5B9;
  number = (number ^ number >> 27) * 0x94D049BB133111EB;
  return number ^ number >> 31;
}

std::uint64_t chance(std::uint64_t one, std::uint64_t two, std::uint64_t three) {
  return mixed(one ^ mixed(two ^ mixed(three)));
}

std::string timeOf(std::int64_t seconds, const char* format) {
  const std::time_t time = seconds;
  char text[40];
  std::tm parts = {};
  gmtime_r(&time, &parts);
  return {text, std::strftime(text, sizeof text, format, &parts)};
}

/// One host on one day.
class Host {
 public:
  Host(std::uint64_t number, std::int64_t day) : m_number(number), m_day(day) {}

  std::string document() {
    m_text =
        "{\n  \"tarn_version\": \"1.1\",\n  \"template\": {\n    \"name\": \"default\",\n    \"version\": "
        "\"3\"\n  },\n";
    member(2, "collected", timeOf(seconds(), "%FT%TZ"));
    m_text += "  \"host\": {\n";
    member(4, "name", name());
    last(4, "bootTime", changing("2026-09-{:02} 04:11:09"));
    m_text += "  },\n";
    member(2, "tarn_collection_time", timeOf(seconds(), "%F"));
    addInstance();
    m_text += "  \"databaseInfo\": [\n    {\n";
    addDatabase();
    m_text += "    }\n  ],\n";
    addPlatform();
    m_text += "  \"customerInfo\": {\n    \"name\": \"\",\n    \"company\": \"Example Corp\"\n  }\n}\n";
    return m_text;
  }

  std::string file() const {
    const std::uint64_t id = chance(m_number, static_cast<std::uint64_t>(m_day), 7);
    return fmt::format("{}/{}-{:016x}{:016x}.json", timeOf(seconds(), "%F"), timeOf(seconds(), "%H%M%S"), id,
                       mixed(id));
  }

 private:
  std::string name() const { return fmt::format("db{:06}.example.org", m_number); }
  std::int64_t seconds() const {
    return kFirstDay + m_day * kDay + static_cast<std::int64_t>(mixed(m_number) % 14'400);
  }

  /// How often the next fact has changed up to this day.
  std::uint64_t version() {
    std::uint64_t changes = 0;
    for (std::uint64_t day = 1; day <= static_cast<std::uint64_t>(m_day); ++day) {
      changes += chance(m_number, m_fact, day) % kChange == 0 ? 1 : 0;
    }
    ++m_fact;
    return changes;
  }
  /// A number, and another one after each change.
  std::string count(std::uint64_t variety) {
    const std::uint64_t first = mixed(m_number * 1009 + m_fact) % variety;
    return std::to_string(first + version());
  }
  /// A text with a number from 1 to 28.
  std::string changing(std::string_view format) {
    const std::uint64_t first = mixed(m_number * 1009 + m_fact);
    return fmt::format(fmt::runtime(format), 1 + (first % 20 + version()) % 28);
  }
  std::string daily(std::uint64_t most) const {
    return std::to_string(chance(m_number, static_cast<std::uint64_t>(m_day), m_text.size()) % most);
  }

  void line(std::size_t indent, std::string_view key, std::string_view text, const char* end) {
    m_text.append(indent, ' ').append("\"").append(key).append("\": \"").append(text).append(end);
  }
  void member(std::size_t indent, std::string_view key, std::string_view text) {
    line(indent, key, text, "\",\n");
  }
  void last(std::size_t indent, std::string_view key, std::string_view text) {
    line(indent, key, text, "\"\n");
  }

  /// `NAME = VALUE` lines as commands print them; most are alike on all hosts.
  std::string listing(std::string_view head, std::size_t lines, std::string_view own) {
    std::string text(head);
    const std::uint64_t changed = version();
    for (std::size_t line = 0; line < lines; ++line) {
      text += fmt::format(" Parameter {:<22} (PARAMETER{:03}) = {}\\n", line, line,
                          line == changed % lines ? changed : mixed(line) % 10'000);
    }
    return text.append(own);
  }

  void addInstance() {
    const std::string version = changing("15.0.{}");
    m_text += "  \"instanceInfo\": {\n";
    member(4, "codeRelease", "PostgreSQL " + version);
    member(4, "version", version);
    member(4, "buildLevel", changing("s26{:02}"));
    member(4, "fixPack", count(4));
    member(4, "versionRaw", "Informational tokens are PostgreSQL " + version + " and level 3\\n");
    member(4, "environmentVarsRaw", listing("[i] HOME=/home/mirel\\n", 24, "[i] HOSTNAME=" + name() + "\\n"));
    last(4, "numberOfDatabases", "1");
    m_text += "  },\n";
  }

  void addDatabase() {
    member(6, "seed", std::to_string(mixed(m_number) % 2'000'000'000));
    member(6, "name", fmt::format("SHOP{}", m_number % 7));
    addRows("runstatsTiming", 40,
            [&](std::size_t) { last(10, "STATS_TIME", changing("2026-09-{:02}T02:11:45Z")); });
    member(6, "configRaw", listing(" Database configuration\\n\\n", 200, ""));
    member(6, "sizeOnDisk", count(900'000));
    addRows("bufferpools", 6, [&](std::size_t row) {
      member(10, "BPNAME", fmt::format("POOL{}", row));
      member(10, "NPAGES", count(5'000));
      member(10, "PAGESIZE", "8192");
      last(10, "BLOCKSIZE", count(5));
    });
    addRows("columnTypeDistrobution", 24, [&](std::size_t row) {
      member(10, "TARN_OBJECTIFY", "typename");
      member(10, "COUNT", count(3'000));
      last(10, "TYPENAME", fmt::format("TYPE{}", row));
    });
    for (const char* const key : {"numberOfXMLColumns", "numberOfCompressedTables", "numberOfPartitions",
                                  "numberOfTables", "numberOfLabels", "minRowCompressionRatio"}) {
      member(6, key, count(40));
    }
    for (const char* const key :
         {"averageNPages", "averageNumberOfRowsInTables", "maxNumberOfRowsInTables"}) {
      member(6, key, daily(1'000'000));
    }
    addRows("pageSizes", 14, [&](std::size_t row) {
      member(10, "TBSPACE", fmt::format("SPACE{}", row));
      member(10, "DATATYPE", "L");
      member(10, "PAGESIZE", count(4));
      last(10, "EXTENTSIZE", count(5));
    });
    last(6, "encryption", "NONE");
  }

  template <class Row>
  void addRows(const char* key, std::size_t rows, Row row) {
    m_text += fmt::format("      \"{}\": [\n", key);
    for (std::size_t at = 0; at < rows; ++at) {
      m_text += "        {\n";
      row(at);
      m_text += at + 1 < rows ? "        },\n" : "        }\n      ],\n";
    }
  }

  void addPlatform() {
    m_text += "  \"platformInfo\": {\n    \"osName\": \"Linux\",\n";
    member(4, "osSystemName", name());
    member(4, "osRelease", changing("6.1.0-{}-amd64"));
    member(4, "networkInfoRaw",
           fmt::format("eth0: inet 10.{}.{}.{}\\n        RX packets {}  bytes {}\\n", m_number >> 16 & 255U,
                       m_number >> 8 & 255U, m_number & 255U, daily(1'000'000), daily(900'000'000)));
    member(4, "cpuTotal", count(5));
    member(4, "physMemTotal", count(9));
    member(4, "physMemFree", daily(64'000'000'000));
    member(4, "swapMemFree", daily(8'000'000'000));
    member(4, "diskInfoTotal", count(9));
    last(4, "diskInfoFree", daily(900'000'000'000));
    m_text += "  },\n";
  }

  std::uint64_t m_number;
  std::int64_t m_day;
  std::string m_text;
  std::uint64_t m_fact = 0;
};

bool write(const std::string& path, const std::string& text) {
  std::FILE* const file = fopen(path.c_str(), "w");
  const bool whole = file != nullptr && fwrite(text.data(), 1, text.size(), file) == text.size();
  return file != nullptr && fclose(file) == 0 && whole;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    fputs("mirel_bench_fleet STORE HOSTS DAY\n", stderr);
    return 2;
  }
  const std::string store = argv[1];
  const std::uint64_t hosts = std::strtoull(argv[2], nullptr, 10);
  const std::int64_t day = std::atoll(argv[3]);
  std::filesystem::create_directories(store + "/" + timeOf(kFirstDay + day * kDay, "%F"));
  for (std::uint64_t number = 1; number <= hosts; ++number) {
    Host host(number, day);
    if (!write(store + "/" + host.file(), host.document())) {
      perror(host.file().c_str());
      return 1;
    }
  }
}
