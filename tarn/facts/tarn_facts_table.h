#pragma once
/// What the members of a document mean: the only place that knows more about a member than its text.
///
///     const Facts facts = Facts::builtIn();
///     if (const Fact* const fact = facts.find("/platformInfo/physMemTotal")) { ... fact->title ... }
///
/// The table is written in a form of its own, see the beginning of facts.txt and docs/facts.md.

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

enum class Unit { text, listing, time, bytes, pages, megahertz, count, number };

/// What a document is told by, in one line.
enum class Role { none, host, time, engine, version, database };

/// What tells of the member in a few words, before anything else of a document is read: "Machine" and
/// "{} memory". `low` is the share in percent below which it is worth a look, 0 for never.
struct Brief {
  std::string group, before, behind;
  unsigned low = 0;
};

/// Texts are empty where the table says nothing.
struct Fact {
  std::string place;    ///< a JSON Pointer, `*` for any element
  std::string title;    ///< a label of a few words
  std::string meaning;  ///< a sentence
  std::string kind;     ///< the kind that filled in what the fact did not say
  Unit unit = Unit::text;
  Role role = Role::none;
  bool isVolatile = false;   ///< changes by itself between two runs
  bool isContainer = false;  ///< an array whose elements are parts of the document
  bool isOptional = false;   ///< nothing is wrong when it is silent

  std::string source;  ///< where the value comes from, on every engine
  std::string sqlite, postgresql, mariadb, product;
  std::string ifNull;   ///< what the text "null" means
  std::string ifNULL;   ///< what the text "NULL" means
  std::string ifEmpty;  ///< what the empty text means
  std::string ifNone;   ///< what the empty array means
  std::string needs;    ///< a place: as long as nothing is there, that is why this member is silent

  std::vector<std::string> names;    ///< columns that tell one row from another
  std::vector<std::string> chart;    ///< "bars" LABEL VALUE, or "share" PLACE
  std::vector<std::string> reveals;  ///< host, person, address, path, secrets
  Brief brief;
};

/// Where a table is not in its form: the line, from 1, and a sentence of ours.
struct FactsProblem {
  std::size_t line = 0;
  std::string text;
};

class Facts {
 public:
  Facts() : m_nodes(1) {}
  /// The facts of the default template and of the collection server's.
  static const Facts& builtIn();

  /// Adds what a text in the table's form tells. A place that the table has already gets the new fact.
  /// Nothing is added when the text has a problem.
  std::optional<FactsProblem> add(std::string_view text);

  /// The fact of a member: of the pointer itself, else with `*` for its numbers, else without the `#2` of a
  /// repeated name. Null when the table has none. Lives as long as the table is not added to.
  const Fact* find(std::string_view pointer) const;

  /// All facts in the order of the table, those of files last.
  const std::vector<Fact>& all() const { return m_facts; }

  /// A way down the table beside a way down a document: no cost where the table knows nothing.
  class Step {
   public:
    explicit Step(const Facts& facts) : m_facts(&facts) {}
    /// The step to a member by its name, or to an element by its number.
    Step below(std::string_view token) const;
    const Fact* fact() const;
    /// False when neither this place nor any below it has a fact.
    bool known() const { return m_known; }

   private:
    const Facts* m_facts;
    std::size_t m_node = 0;
    bool m_known = true;
  };

 private:
  struct Node {
    std::map<std::string, std::size_t, std::less<>> below;  ///< to the index of a node
    std::optional<std::size_t> fact;                        ///< index
  };

  void insert(Fact fact);

  std::vector<Fact> m_facts;
  std::vector<Node> m_nodes;
};

/// Reads a text in the table's form. `facts` gets them in order when there is no problem.
std::optional<FactsProblem> readFacts(std::string_view text, std::vector<Fact>* facts);

/// The words of the table's form, for its own text and for docs/facts.md.
std::string_view wordOf(Unit unit);
std::string_view wordOf(Role role);

}  // namespace tarn
