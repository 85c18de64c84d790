#include "tarn/page/tarn_page_fleet.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <span>

#include "tarn/document/tarn_document_json.h"
#include "tarn/page/tarn_page_model.h"
#include "tarn/page/tarn_page_write.h"

namespace tarn {

namespace {

constexpr std::size_t kListed = 100;  // lines of a list without JavaScript

constexpr const char* kFacts = R"(
/hosts
  title: Hosts
  meaning: What the newest document of each host says.
/engines
  title: Engines
  meaning: How many hosts run which engine, as their newest documents tell it.
  chart: bars Engine Hosts
/states
  title: States
  meaning: How many hosts are in which state. What is not whole, or has a problem, tells nothing of its host.
/drift
  title: Drift
  meaning: The places where facts changed lately, and on how many hosts. A host's first document is no change.
/silent
  title: Silent hosts
  meaning: Hosts whose newest document is old.
/problems
  title: Problems
  meaning: Documents whose facts were not taken.
)";

/// How often each text is there, the most frequent first, then by text.
using Counts = std::vector<std::pair<std::string, std::uint64_t>>;

template <class Text>
Counts countsOf(const std::vector<FleetPage::Host>& hosts, Text text) {
  std::map<std::string, std::uint64_t> counts;
  for (const FleetPage::Host& host : hosts) {
    ++counts[text(host)];
  }
  Counts sorted(counts.begin(), counts.end());
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const auto& one, const auto& other) { return one.second > other.second; });
  return sorted;
}

std::string engineOf(const FleetPage::Host& host) {
  return host.engine.empty() ? "no engine told" : host.engine;
}

std::string stateOf(const FleetPage::Host& host) {
  return host.problem.empty() ? host.state : host.problem;
}

void addCounts(const char* name, const char* title, const Counts& counts, JsonText& json) {
  json.key(name).array();
  for (const auto& [text, count] : counts) {
    json.object().member(title, text).member("Hosts", count).end();
  }
  json.end();
}

std::vector<FleetPage::Host> silentOf(const FleetPage& fleet) {
  std::vector<FleetPage::Host> silent;
  std::ranges::copy_if(fleet.hosts, std::back_inserter(silent), &FleetPage::Host::isSilent);
  return silent;
}

void addHosts(const char* name, const std::vector<FleetPage::Host>& hosts, JsonText& json) {
  json.key(name).array();
  for (const FleetPage::Host& host : hosts) {
    json.object().member("Host", host.name).member("Last seen", host.time).member("State", stateOf(host));
    json.member("Engine", host.engine).member("Database", host.database);
    json.member("Answered", host.answered).member("Asked", host.asked);
    json.member("Documents", host.documents).end();
  }
  json.end();
}

void addDrift(const FleetPage& fleet, JsonText& json) {
  json.key("drift").array();
  for (const FleetPage::Drift& drift : fleet.drift) {
    json.object()
        .member("Place", drift.pointer)
        .member("Hosts", drift.hosts)
        .member("Changes", drift.changes)
        .end();
  }
  json.end();
}

void addProblems(const FleetPage& fleet, JsonText& json) {
  json.key("problems").array();
  for (const FleetPage::Problem& one : fleet.problems) {
    json.object().member("File", one.file).member("Problem", one.problem).member("State", one.state);
    json.member("Host", one.host).member("Time", one.time).end();
  }
  json.end();
}

/// The fleet as a document of tables. One without rows would say that something did not answer.
std::string documentOf(const FleetPage& fleet) {
  JsonText json;
  json.object();
  if (const std::vector<FleetPage::Host> silent = silentOf(fleet); !silent.empty()) {
    addHosts("silent", silent, json);
  }
  if (!fleet.drift.empty()) {
    addDrift(fleet, json);
  }
  if (!fleet.hosts.empty()) {
    addCounts("engines", "Engine", countsOf(fleet.hosts, engineOf), json);
    addCounts("states", "State", countsOf(fleet.hosts, stateOf), json);
    addHosts("hosts", fleet.hosts, json);
  }
  if (!fleet.problems.empty()) {
    addProblems(fleet, json);
  }
  return json.end().text();
}

std::string modelOf(const FleetPage& fleet) {
  Facts facts;
  facts.add(kFacts);
  return pageModel(Tree(documentOf(fleet)), facts, nullptr);
}

std::string figure(const std::string& title, const std::string& text) {
  return fmt::format("<div><dt>{}</dt><dd>{}</dd></div>\n", title, html(text));
}

std::string headerOf(const FleetPage& fleet) {
  std::uint64_t documents = 0;
  for (const FleetPage::Host& host : fleet.hosts) {
    documents += host.documents;
  }
  return "<header>\n<h1>Fleet</h1>\n<dl>\n" + figure("Made", fleet.made) +
         figure("Hosts", std::to_string(fleet.hosts.size())) +
         figure(fmt::format("Silent for {} days", fleet.silentAfter),
                std::to_string(silentOf(fleet).size())) +
         figure("Changes since", fleet.since) + figure("Documents", std::to_string(documents)) +
         figure("Problems", std::to_string(fleet.problems.size())) + "</dl>\n</header>\n";
}

/// Lines that are markup already.
std::string listOf(const char* title, const std::vector<std::string>& lines) {
  std::string out = fmt::format("<section>\n<h2>{}</h2>\n<ul>\n", title);
  for (const std::string& line : std::span(lines).first(std::min(lines.size(), kListed))) {
    out += "<li>" + line + "</li>\n";
  }
  const std::string more =
      lines.size() > kListed ? fmt::format("<p>and {} more</p>\n", lines.size() - kListed) : "";
  return lines.empty() ? "" : out + "</ul>\n" + more + "</section>\n";
}

std::string silentList(const FleetPage& fleet) {
  std::vector<std::string> lines;
  for (const FleetPage::Host& host : fleet.hosts) {
    if (host.isSilent) {
      lines.push_back(
          fmt::format("{}: {}", html(host.name), host.time.empty() ? "no time told" : html(host.time)));
    }
  }
  return listOf("Silent hosts", lines);
}

std::string driftList(const FleetPage& fleet) {
  std::vector<std::string> lines;
  for (const FleetPage::Drift& drift : fleet.drift) {
    lines.push_back(
        fmt::format("{} (hosts: {}, changes: {})", html(drift.pointer), drift.hosts, drift.changes));
  }
  return listOf("Drift", lines);
}

std::string countList(const char* title, const Counts& counts) {
  std::vector<std::string> lines;
  for (const auto& [text, count] : counts) {
    lines.push_back(fmt::format("{}: {}", html(text), count));
  }
  return listOf(title, lines);
}

/// The lists repeat what the tables show, so they are there without JavaScript only.
std::string summaryOf(const FleetPage& fleet) {
  return headerOf(fleet) + "<noscript>\n" + silentList(fleet) + driftList(fleet) +
         countList("Engines", countsOf(fleet.hosts, engineOf)) +
         countList("States", countsOf(fleet.hosts, stateOf)) + "</noscript>\n";
}

}  // namespace

std::optional<std::string> pageOf(const FleetPage& fleet) {
  return pageOf(PageText{"Fleet, " + html(fleet.made), summaryOf(fleet), modelOf(fleet)});
}

}  // namespace tarn
