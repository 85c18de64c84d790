// Rules about strings that are commands, or that their author took for one.

#include <fmt/format.h>

#include <algorithm>

#include "tarn/template/tarn_template_rule.h"

namespace tarn {

namespace {

using Rest = NativeWord::Rest;

bool isCommand(const Words& words) {
  return isKnown(commandWords(), words[0].text);
}

/// Whether the words begin a command of this kind with at least one word more.
bool isCommand(const Words& words, std::string_view command) {
  return words[0].text == command && words.count >= 2;
}

/// The word's letters before what should have been a blank.
std::string_view beforeSeparator(const Word& word) {
  return word.raw.substr(0, separatorIn(word.raw));
}

bool hasSeparator(const Word& word) {
  return separatorIn(word.raw) != std::string_view::npos;
}

/// Known in any letter case, or nearly so.
bool resembles(const Known& known, std::string_view word) {
  return std::any_of(known.begin(), known.end(),
                     [word](const char* one) { return distance(word, one) <= 1; });
}

bool beginsQuery(std::string_view word) {
  const std::string lower = lowered(word);
  return lower == "select" || lower == "with" || lower == "values" || lower.starts_with('(');
}

/// Prose may begin with these words, too; what follows tells.
bool meantAsCommand(const std::string& command, const Words& words) {
  return command == "execute" || (command == "native" && resembles(collectorWords(), words[1].text)) ||
         (command == "sql" && (resembles(sqlKinds(), words[1].text) || beginsQuery(words[1].text)));
}

void otherCase(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  const std::string command = lowered(words[0].text);
  if (!isCommand(words) && isKnown(commandWords(), command) && words.count >= 2 &&
      meantAsCommand(command, words)) {
    findings.add(words[0].offset, fmt::format("\"{}\" is no command word", words[0].text),
                 fmt::format("write \"{}\"", command));
  }
}

/// The first of the words that have to stand apart and do not; null when all do. A path or a query may hold
/// tabs.
const Word* joinedWord(const Words& words) {
  if (hasSeparator(words[0])) {
    const std::string first = lowered(beforeSeparator(words[0]));
    return isKnown(commandWords(), first) ? &words[0] : nullptr;
  }
  const bool isNative = isCommand(words, "native");
  const bool isSql = isCommand(words, "sql");
  if ((isNative || isSql) && hasSeparator(words[1])) {
    return &words[1];
  }
  const bool apart = (isNative && words[1].text != "readFile") || (isSql && words[1].text == "value");
  return apart && hasSeparator(words[2]) ? &words[2] : nullptr;
}

void tab(const Site& site, Findings& findings) {
  if (const Word* const joined = joinedWord(*site.words)) {
    const std::size_t at = separatorIn(joined->raw);
    const char separator = joined->raw[at];
    const bool isTab = separator == '\t';
    findings.add(joined->offset + at,
                 fmt::format("a {} behind \"{}\" separates no words", isTab ? "tab" : "line end",
                             beforeSeparator(*joined)),
                 "write a blank");
  }
}

void inArray(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  const bool runs = words[0].text == "execute" ? words.count >= 2
                    : words[0].text == "native"
                        ? collectorOf(words[1].text) != nullptr
                        : words[0].text == "sql" && isKnown(sqlKinds(), words[1].text);
  if (runs) {
    findings.add(words[0].offset, "a command that is an element of an array is copied, not evaluated",
                 fmt::format("make it the value of a member: {{\"name\": \"{} ...\"}}", words[0].text));
  }
}

void oneWord(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  const bool isIncompleteSql = words[0].text == "sql" && words.blankBehind;
  if (isCommand(words) && words.count == 1 && !isIncompleteSql) {
    findings.add(words[0].offset, fmt::format("\"{}\" alone is no command", words[0].text),
                 "write what it is about behind it");
  }
}

void collector(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  if (isCommand(words, "native") && !hasSeparator(words[1]) && collectorOf(words[1].text) == nullptr) {
    findings.add(words[1].offset,
                 fmt::format("\"native\" knows no \"{}\": the text is copied", words[1].text),
                 instead(collectorWords(), words[1].text));
  }
}

/// The collector of a command whose words stand apart; null for anything else.
const NativeWord* askedCollector(const Words& words) {
  const bool apart = isCommand(words, "native") && !hasSeparator(words[1]) && !hasSeparator(words[2]);
  return apart ? collectorOf(words[1].text) : nullptr;
}

/// "null" is what templates ask for that want that answer.
void item(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  const NativeWord* const asked = askedCollector(words);
  if (asked == nullptr || asked->rest == Rest::anything) {
    return;
  }
  const char* const missing = asked->rest == Rest::path ? "path" : "item";
  if (words.count == 2) {
    findings.add(words[1].offset, fmt::format("no {} behind \"{}\"", missing, asked->word),
                 asked->rest == Rest::path ? "write the path of a file" : instead(asked->items, ""));
  } else if (asked->rest == Rest::item && words[2].text != "null" && !isKnown(asked->items, words[2].text)) {
    findings.add(words[2].offset, fmt::format("\"{}\" knows no \"{}\"", asked->word, words[2].text),
                 instead(asked->items, words[2].text));
  }
}

void itemWords(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  const NativeWord* const asked = askedCollector(words);
  if (asked == nullptr || words.count < 4) {
    return;
  }
  if (asked->rest == Rest::path) {
    findings.add(words[3].offset,
                 fmt::format("a path ends at its first blank: \"{}\" is read", words[2].text),
                 "let a shell command read it: execute cat 'PATH'");
  } else {
    findings.add(words[3].offset, fmt::format("what follows \"{}\" is ignored", words[2].text),
                 "take it out");
  }
}

void sqlKind(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  if (isCommand(words, "sql") && !hasSeparator(words[1]) && !isKnown(sqlKinds(), words[1].text)) {
    findings.add(words[1].offset,
                 fmt::format("\"sql\" knows no \"{}\": the answer is \"null\"", words[1].text),
                 instead(sqlKinds(), words[1].text));
  }
}

void sqlIncomplete(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  if (words[0].text == "sql" && words.count == 1 && words.blankBehind) {
    findings.add(words[0].offset, "nothing stands behind \"sql\": the answer is \"null\"",
                 fmt::format("write one of {}, and a query", fmt::join(sqlKinds(), ", ")));
  }
  if (!isCommand(words, "sql") || !isKnown(sqlKinds(), words[1].text)) {
    return;
  }
  const bool isValue = words[1].text == "value";
  if (isValue && words.count >= 3 && beginsQuery(words[2].text)) {
    findings.add(words[2].offset, fmt::format("\"{}\" is taken for the name of a column", words[2].text),
                 "write the column's name before the query: sql value COLUMN select ...");
  } else if (words.count < (isValue ? 4 : 3) && !hasSeparator(words[2])) {
    findings.add(words[words.count - 1].offset,
                 fmt::format("no query behind \"{}\"", words[words.count - 1].text),
                 isValue ? "write sql value COLUMN QUERY" : fmt::format("write sql {} QUERY", words[1].text));
  }
}

/// What a query calls its columns, as far as that can be seen in its text.
class QueryNames {
 public:
  QueryNames(std::string_view query, std::string_view column) : m_text(query), m_column(lowered(column)) {
    read();
  }

  /// The quoted name that is the column but for letter case, and nothing else may be it; empty when there is
  /// none.
  const std::string& onlyQuoted() const {
    static const std::string none;
    return m_other ? none : m_quoted;
  }

 private:
  void read() {
    while (m_at < m_text.size()) {
      const char next = m_text[m_at];
      if (next == '\'' || next == '"') {
        quoted(next);
      } else if (m_text.substr(m_at, 2) == "--") {
        m_at = std::min(m_text.find('\n', m_at), m_text.size());
      } else if (m_text.substr(m_at, 2) == "/*") {
        m_at = std::min(m_text.find("*/", m_at), m_text.size());
      } else if (isLetter(next)) {
        word();
      } else {
        m_other = m_other || (next == '*' && allColumns());
        m_last = next == ' ' ? m_last : std::string(1, next);
        ++m_at;
      }
    }
  }

  void quoted(char quote) {
    const std::size_t end = std::min(m_text.find(quote, m_at + 1), m_text.size());
    const std::string name(m_text.substr(m_at + 1, end - m_at - 1));
    if (quote == '"' && lowered(name) == m_column) {
      const bool isUpper =
          std::none_of(name.begin(), name.end(), [](char c) { return c >= 'a' && c <= 'z'; });
      m_other = m_other || isUpper;
      m_quoted = name;
    }
    m_last = "name";
    m_at = end + 1;
  }

  void word() {
    const std::size_t begin = m_at;
    while (m_at < m_text.size() && isLetter(m_text[m_at])) {
      ++m_at;
    }
    m_last = lowered(m_text.substr(begin, m_at - begin));
    m_other = m_other || m_last == m_column;
  }

  /// Whether the star that comes is "every column".
  bool allColumns() const {
    return m_last == "select" || m_last == "distinct" || m_last == "all" || m_last == "." || m_last == ",";
  }

  static bool isLetter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           c == '$' || c == '#' || c == '@' || static_cast<unsigned char>(c) >= 0x80;
  }

  std::string_view m_text;
  std::string m_column, m_last, m_quoted;
  std::size_t m_at = 0;
  bool m_other = false;
};

void sqlColumn(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  constexpr std::string_view kMultiplied = R"(\\\)";
  if (!isCommand(words, "sql") || words[1].text != "value" || words.fromLast.empty() ||
      words.fromLast.find(kMultiplied) != std::string_view::npos) {
    return;
  }
  const std::string query = unescaped(words.fromLast);
  const QueryNames names(query, words[2].text);
  if (!names.onlyQuoted().empty()) {
    findings.add(words[2].offset,
                 fmt::format("the column is looked for in upper case, and the query has it as \"{}\"",
                             names.onlyQuoted()),
                 "take its quotes out of the query");
  }
}

}  // namespace

std::vector<Rule> commandRules() {
  using enum Level;
  return {
      {"case",
       warning,
       "Command words count letter by letter; with others the text is copied as it is.",
       Look::command,
       otherCase,
       R"({"os": "Native os name"})",
       R"(1:9: warning: "Native" is no command word; write "native" [case])",
       R"({"os": "native os name"})",
       {R"({"team": "Natives of Oslo"})", R"({"Native os": "x"})", R"({"a": "SQL is a language"})"}},
      {"tab",
       warning,
       "Only blanks separate words; tabs and line ends belong to the word.",
       Look::command,
       tab,
       "{\"cpu\": \"native\tcpu total\"}",
       R"(1:16: warning: a tab behind "native" separates no words; write a blank [tab])",
       R"({"cpu": "native  cpu total"})",
       {"{\"a\": \"execute printf '\t'\"}", "{\"a\": \"sql one select\t1\"}", "{\"a\": \"b\tnative\"}"}},
      {"in-array",
       warning,
       "Only the values of members are evaluated; elements of arrays are copied.",
       Look::element,
       inArray,
       R"({"disks": ["native disk total"]})",
       R"(1:13: warning: a command that is an element of an array is copied, not evaluated; make it the value of a member: {"name": "native ..."} [in-array])",
       R"({"disks": [{"total": "native disk total"}]})",
       {R"(["native speakers", "sql", "execute"])"}},
      {"one-word",
       warning,
       "A string of one word is copied, and a command without its words gives nothing.",
       Look::command,
       oneWord,
       R"({"load": "execute"})",
       R"(1:11: warning: "execute" alone is no command; write what it is about behind it [one-word])",
       R"({"load": "execute uptime"})",
       {R"({"a": "executed"})", R"({"a": ["execute"]})"}},
      {"collector",
       warning,
       "An unknown collector word leaves the text as it is.",
       Look::command,
       collector,
       R"({"size": "native disks total"})",
       R"(1:18: warning: "native" knows no "disks": the text is copied; write "disk" [collector])",
       R"({"size": "native disk total"})",
       {R"({"a": "execute native disks total"})"}},
      {"item",
       error,
       "An unknown item answers \"null\", or nothing.",
       Look::command,
       item,
       R"({"os": "native os nmae"})",
       R"(1:19: error: "os" knows no "nmae"; write "name" [item])",
       R"({"os": "native os name"})",
       {R"({"a": "native customer null"})", R"({"a": "native network anything"})",
        R"({"a": "native network"})"}},
      {"item-words",
       warning,
       "What follows an item is ignored, and a path has no blank.",
       Look::command,
       itemWords,
       R"({"log": "native readFile /var/log/my app.log"})",
       R"(1:38: warning: a path ends at its first blank: "/var/log/my" is read; let a shell command read it: execute cat 'PATH' [item-words])",
       R"({"log": "execute cat '/var/log/my app.log'"})",
       {R"({"a": "native  os  name  "})"}},
      {"sql-kind",
       error,
       "`sql` is followed by one of its kinds.",
       Look::command,
       sqlKind,
       R"({"rows": "sql table select 1 as n"})",
       R"(1:15: error: "sql" knows no "table": the answer is "null"; write one of array, value, one [sql-kind])",
       R"({"rows": "sql array select 1 as n"})",
       {R"({"a": "sql  one  select 1 as n"})"}},
      {"sql-incomplete",
       error,
       "A query belongs to every kind, and to `sql value` the name of a column before it.",
       Look::command,
       sqlIncomplete,
       R"({"n": "sql value select count(*) as n from t"})",
       R"(1:18: error: "select" is taken for the name of a column; write the column's name before the query: sql value COLUMN select ... [sql-incomplete])",
       R"({"n": "sql value n select count(*) as n from t"})",
       {R"({"n": "sql value selected select 1 as selected"})"}},
      {"sql-column",
       error,
       "`sql value` looks for its column in upper case, so a quoted name in other letters is never found.",
       Look::command,
       sqlColumn,
       R"({"n": "sql value sum select 1+1 as \"sum\""})",
       R"(1:18: error: the column is looked for in upper case, and the query has it as "sum"; take its quotes out of the query [sql-column])",
       R"({"n": "sql value sum select 1+1 as sum"})",
       {R"({"n": "sql value sum select 1+1 as \"SUM\""})",
        R"({"n": "sql value n select *, 1 as \"n\" from t"})",
        R"({"n": "sql value n select '\"n\"' as n"})"}},
  };
}

}  // namespace tarn
