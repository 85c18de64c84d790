// What a loader makes of documents: places and values, and rows, in whatever order they come.

#include <gtest/gtest.h>

#include <map>
#include <numeric>
#include <random>
#include <set>

#include "tarn/document/tarn_document_siphash.h"
#include "tarn/fleet/load/tarn_fleet_flatten.h"
#include "tarn/fleet/load/tarn_fleet_log.h"
#include "tarn/fleet/load/tarn_fleet_timeline.h"

using namespace tarn;

namespace {

Facts someFacts() {
  Facts facts;
  EXPECT_FALSE(
      facts.add("/db\n  title: T\n  meaning: M\n  container: yes\n  names: name\n"
                "/db/*/t\n  title: T\n  meaning: M\n  names: K L\n"
                "/db/*/t/*/USED\n  title: T\n  meaning: M\n  volatile: yes\n"
                "/now\n  title: T\n  meaning: M\n  volatile: yes\n"
                "/disks/*/FREE\n  title: T\n  meaning: M\n  volatile: yes\n"));
  return facts;
}

/// `place=value`, a blank between two, those that change by themselves behind "~".
std::string placesOf(const std::string& document, FleetPlaces& places) {
  const FlatDocument flat = flattened(Tree(document), places);
  std::string text;
  for (const FlatFact& fact : flat.facts)
    text += fact.place->place.text + "=" + std::string(flat.valueOf(fact)) + " ";
  for (const FlatFact& fact : flat.latest)
    text += "~" + fact.place->place.text + "=" + std::string(flat.valueOf(fact)) + " ";
  return text.substr(0, text.size() - 1);
}

TEST(Flattened, NamesRowsAndElements) {
  const char* const kCases[][2] = {
      {R"({"a": "x", "b": {"c": 1, "d": null}, "a": "y"})", "/a=x /b/c=1 /b/d=null /a#2=y"},
      {R"({"e": [], "f": {}, "g": [[], {}]})", "/e=[] /f={} /g/0=[] /g[]={}"},
      {R"({"l": ["p", "q", "p", 7, ["r"]]})", "/l[=p]=p /l[=q]=q /l[=p#2]=p /l[=7]=7 /l/4[=r]=r"},
      {R"({"l": ["p#2", "p", "p", "p"]})", "/l[=p#2]=p#2 /l[=p]=p /l[=p#3]=p /l[=p#4]=p"},
      {R"({"db": [{"name": "S", "t": [{"k": "a/b", "L": "]=,~", "USED": 5}]}]})",
       "/db[name=S]/name=S /db[name=S]/t[k=a~1b,L=~2~3~4~0]/k=a/b /db[name=S]/t[k=a~1b,L=~2~3~4~0]/L=]=,~ "
       "~/db[name=S]/t[k=a~1b,L=~2~3~4~0]/USED=5"},
      {R"({"r": [{"TARN_OBJECTIFY": "n", "c": 1, "N": "z"}]})",
       "/r[N=z]/TARN_OBJECTIFY=n /r[N=z]/c=1 /r[N=z]/N=z"},
      {R"({"disks": [{"N": "sda", "FREE": "1"}, {"x": {"y": 2}}]})",
       "/disks[N=sda]/N=sda /disks[]/x/y=2 ~/disks[N=sda]/FREE=1"},
      {R"({"now": [{"T": 1}, {"T": 2}]})", "~/now/0/T=1 ~/now/1/T=2"},
      {"{\"\xC3\": \"\xFF\\u0000\\n\", \"a/b~c\": 1}", "/\xEF\xBF\xBD=\xEF\xBF\xBD\xEF\xBF\xBD\n /a~1b~0c=1"},
      {R"("x")", "=x"}};
  const Facts facts = someFacts();
  FleetPlaces places(facts);
  for (const char* const round : {"first", "places are known"})
    for (const auto& [document, told] : kCases)
      EXPECT_EQ(told, placesOf(document, places)) << document << " " << round;
}

// Names of any length cost no more than their bytes.
TEST(Flattened, KeepsPlacesShort) {
  const Facts facts = someFacts();
  FleetPlaces places(facts);
  std::string deep;
  for (int level = 0; level < 9000; ++level)
    deep += R"({"level": )";
  const std::string documents[] = {deep + "1" + std::string(9000, '}'),
                                   R"({"l": [{"a": ")" + std::string(100'000, 'x') + R"("}, {"a": ")" +
                                       std::string(100'001, 'x') + R"("}]})"};
  for (const std::string& document : documents) {
    const FlatDocument flat = flattened(Tree(document), places);
    std::set<std::string> texts;
    for (const FlatFact& fact : flat.facts) {
      EXPECT_GT(1100u, fact.place->place.text.size() + fact.place->place.scope.size());
      EXPECT_TRUE(texts.insert(fact.place->place.text).second);
    }
  }
}

TEST(Flattened, TellsScopes) {
  const Facts facts = someFacts();
  FleetPlaces places(facts);
  const FlatDocument flat =
      flattened(Tree(R"({"db": [{"name": "S", "t": [{"K": 1, "L": 2}]}, {"x": 1}]})"), places);
  ASSERT_EQ(1u, flat.scopes.size());
  EXPECT_EQ("/db[name=S]", flat.scopes[0]->place.scope);
  EXPECT_EQ("/db/*/t/*/L", flat.facts[2].place->place.pointer);
  EXPECT_EQ(sipHash("/db[name=S]"), flat.facts[2].place->scope);
  EXPECT_EQ(0u, flat.facts.back().place->scope);
}

TEST(ExchangeLog, TellsTheHostOfARequest) {
  ExchangeLog log;
  log.addLine(R"(2026-11-21T10:00:00+01:00 192.0.2.7 "db1.example:8081" "POST /tarn HTTP/1.0" 201 99 ab01)");
  log.addLine(R"(2026-11-21T10:00:00Z ::1 "-" "GET / \x22" 201 HTTP/1.0" 404 9 ab02)");
  log.addLine("no line of the server's");
  ASSERT_NE(nullptr, log.find("ab01"));
  EXPECT_EQ("db1.example", log.find("ab01")->host);
  EXPECT_EQ(1'795'251'600, log.find("ab01")->seconds);
  EXPECT_EQ("", log.find("ab02")->host);
  EXPECT_EQ(nullptr, log.find("server's"));
  EXPECT_TRUE(isSameHost("DB1", "db1.example") && isSameHost("db1.Example", "DB1.example"));
  EXPECT_FALSE(isSameHost("db1.example", "db1.other") || isSameHost("db1", "db10"));
}

/// A host's documents and rows, as an engine keeps them.
struct Model {
  struct Row {
    std::string value;  ///< empty: none
    bool isVoid;
    bool operator==(const Row&) const = default;
  };
  using Rows = std::map<std::pair<std::uint64_t, Moment>, Row>;
  std::map<Moment, std::vector<std::uint64_t>> documents;
  Rows rows;

  HostHistory history(Moment after) const {
    HostHistory history;
    for (auto document = documents.upper_bound(after); document != documents.end(); ++document)
      history.documents.push_back({document->first, document->second});
    for (const auto& [key, row] : rows)
      history.rows.push_back({key.first, scopeOf[key.first], key.second,
                              row.value.empty() ? 0 : sipHash(row.value), row.isVoid});
    return history;
  }
  void put(const HostTimeline::Put& put) {
    std::string value(put.value);
    if (put.needsTexts())
      value = rows.at({put.place, put.told}).value;  // an engine would tell it
    rows[{put.place, put.since}] = {put.isThere ? value : "", put.isVoid};
  }
  /// Those of one place whose row is not void: the changes.
  Rows changes() const {
    Rows changes;
    for (const auto& [key, row] : rows)
      if (!row.isVoid)
        changes[key] = row;
    return changes;
  }
  inline static std::map<std::uint64_t, std::uint64_t> scopeOf;
};

constexpr std::size_t kPlaces = 6;

struct RandomHost {
  std::vector<KnownPlace> scopes, places;
  std::vector<FlatDocument> documents;  ///< at moments 10, 20, …

  RandomHost(std::mt19937& random, std::size_t count) {
    const Facts facts;
    const auto known = [&](const std::string& text, const std::string& scope) {
      return KnownPlace{.place = {text, text, scope},
                        .hash = sipHash(text),
                        .scope = scope.empty() ? 0 : sipHash(scope),
                        .step = Facts::Step(facts),
                        .token = {}};
    };
    for (const std::string scope : {"A", "B"})
      scopes.push_back(known(scope, scope));
    for (std::size_t at = 0; at < kPlaces; ++at) {
      places.push_back(known("p" + std::to_string(at), at < 2 ? "" : scopes[at % 2].place.text));
      Model::scopeOf[places.back().hash] = places.back().scope;
    }
    for (std::size_t at = 0; at < count; ++at)
      add(random);
  }

  void add(std::mt19937& random) {
    FlatDocument& document = documents.emplace_back();
    document.texts = "12";
    for (const KnownPlace& scope : scopes)
      if (random() % 3 != 0)
        document.scopes.push_back(&scope);
    for (const KnownPlace& place : places)
      if (const std::size_t value = random() % 3; value != 0 && holds(document, place.scope))
        document.facts.push_back({&place, sipHash(value == 1 ? "1" : "2"), value - 1, 1});
  }
  static bool holds(const FlatDocument& document, std::uint64_t scope) {
    return scope == 0 || std::any_of(document.scopes.begin(), document.scopes.end(),
                                     [scope](const KnownPlace* held) { return held->scope == scope; });
  }

  /// What differs from one document to the next, by looking at all of them.
  Model::Rows changes() const {
    Model::Rows changes;
    for (const KnownPlace& place : places) {
      std::string before;
      for (std::size_t at = 0; at < documents.size(); ++at) {
        std::string value;
        for (const FlatFact& fact : documents[at].facts)
          value = fact.place == &place ? documents[at].valueOf(fact) : value;
        if (holds(documents[at], place.scope) && value != before)
          changes[{place.hash, 10 * static_cast<Moment>(at + 1)}] = {before = value, false};
      }
    }
    return changes;
  }
};

// In any order, in any batches, also when a loader is killed within a batch: rows go first, the newest before
// others.
TEST(HostTimeline, ComesToTheSameWhateverTheOrder) {
  std::mt19937 random(7);
  for (int round = 0; round < 3000; ++round) {
    const RandomHost host(random, 1 + random() % 9);
    std::vector<std::size_t> order(host.documents.size());
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), random);
    Model model;
    HostTimeline timeline;
    while (!order.empty()) {
      const auto count = static_cast<std::ptrdiff_t>(1 + random() % order.size());
      std::sort(order.end() - count, order.end());
      timeline.begin(model.history(10 * static_cast<Moment>(*(order.end() - count) + 1) - 1));
      const bool isKilled = random() % 4 == 0;
      for (auto at = order.end() - count; at != order.end(); ++at)
        EXPECT_TRUE(timeline.take(host.documents[*at], 10 * static_cast<Moment>(*at + 1)));
      std::vector<HostTimeline::Put> puts = timeline.puts();
      std::ranges::stable_sort(puts, std::ranges::greater(), &HostTimeline::Put::since);
      puts.resize(isKilled ? random() % (puts.size() + 1) : puts.size());
      for (const HostTimeline::Put& put : puts)
        model.put(put);
      if (isKilled) {
        std::shuffle(order.begin(), order.end(), random);
        continue;
      }
      for (auto at = order.end() - count; at != order.end(); ++at)
        for (std::vector<std::uint64_t>& scopes = model.documents[10 * static_cast<Moment>(*at + 1)];
             const KnownPlace* const scope : host.documents[*at].scopes)
          scopes.push_back(scope->scope);
      order.erase(order.end() - count, order.end());
    }
    ASSERT_EQ(host.changes(), model.changes()) << "round " << round;
  }
}

TEST(HostTimeline, TakesAMomentOnce) {
  std::mt19937 random(7);
  const RandomHost host(random, 2);
  HostTimeline timeline;
  timeline.begin({.documents = {{20, {}}}, .rows = {}});
  EXPECT_FALSE(timeline.take(host.documents[0], 20));
  EXPECT_TRUE(timeline.take(host.documents[0], 10) && timeline.puts().size() > 0);
}

}  // namespace
