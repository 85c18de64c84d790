#pragma once
/// The page of a fleet: hosts, versions, states, what changed lately, who is silent. It is the page of a
/// document that is made here, so its tables, charts, search and links are those of every page.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn {

struct FleetPage {
  std::string made;        ///< when, as people read it
  std::string since;       ///< from when on changes count
  double silentAfter = 0;  ///< days without a document that make a host silent

  struct Host {
    std::string name, time, state, problem, engine, database;  ///< may be empty
    std::uint64_t answered = 0, asked = 0, documents = 0;
    bool isSilent = false;
  };
  std::vector<Host> hosts;
  struct Drift {
    std::string pointer;
    std::uint64_t hosts = 0, changes = 0;
  };
  std::vector<Drift> drift;
  struct Problem {
    std::string file, host, time, state, problem;
  };
  std::vector<Problem> problems;
};

/// Nothing for want of memory.
std::optional<std::string> pageOf(const FleetPage& fleet);

}  // namespace tarn
