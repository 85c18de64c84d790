#include "platform/host/mirel_host_statement.h"

#include <strings.h>

#include <algorithm>
#include <array>

#include "platform/host/mirel_host_tokens.h"

namespace host {

namespace {

/// The first is that of every engine not listed.
constexpr std::array<Dialect, 4> kDialects{{
    {.backtickNames = true},
    {.engine = "SQLite", .bareTableFunctions = true, .bracketNames = true, .backtickNames = true},
    // The driver takes the text encoding from the environment of the process; facts are UTF-8.
    {.engine = "PostgreSQL",
     .bareTableFunctions = true,
     .nestedComments = true,
     .dollarQuotes = true,
     .sessionStart = "set client_encoding to 'UTF8'"},
    {.engine = "Microsoft SQL Server", .bracketNames = true, .nestedComments = true},
}};

/// The shortest name limit among engines, less a torn character: a shorter name was not cut.
constexpr std::size_t kCutLength = 60;

/// Words that end the list of tables after FROM.
constexpr std::array<std::string_view, 16> kClauses{
    "select", "where",     "group",  "having", "order", "window", "union", "intersect",
    "except", "returning", "values", "limit",  "fetch", "for",    "set",   "with"};

bool sameWord(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

bool beginsClause(std::string_view word) {
  return std::any_of(kClauses.begin(), kClauses.end(),
                     [word](std::string_view clause) { return sameWord(word, clause); });
}

/// A quoted name as the engine sees it: without its quotes, doubled ones inside made single.
std::string unquoted(std::string_view token) {
  const char quote = token.back();
  std::string name(token.substr(1, token.size() - 2));
  const auto doubled = [quote](char a, char b) { return a == quote && b == quote; };
  std::size_t kept = 0;
  for (std::size_t i = 0; i < name.size(); ++i, ++kept) {
    name[kept] = name[i];
    if (i + 1 < name.size() && doubled(name[i], name[i + 1])) {
      ++i;
    }
  }
  name.resize(kept);
  return name;
}

/// Follows a statement token by token and notes what has to be cut out of it.
class Unwrapper {
 public:
  Unwrapper(std::string_view statement, const Dialect& dialect)
      : m_text(statement), m_tokens(statement, dialect) {}

  std::optional<std::string> run();

 private:
  /// How far the inside of a `table(...)` looks like one call of a function.
  enum class Call { none, begun, named, open, complete, spoiled };

  /// What an open parenthesis encloses; the outermost level is the statement.
  struct Level {
    bool inFrom = false;       ///< a comma leads to the next table
    Call call = Call::none;    ///< of a `table(`
    std::size_t firstCut = 0;  ///< of a `table(`: its cuts in m_cuts
  };

  struct Cut {
    std::size_t begin;
    std::size_t end;
    bool confirmed;
  };

  bool step(const Token& token);
  void open(const Token& token);
  bool close(const Token& token);
  void word(const Token& token);
  void follow(const Token& token);
  std::optional<std::string> result() const;
  std::string_view textOf(const Token& token) const {
    return m_text.substr(token.begin, token.end - token.begin);
  }

  const std::string_view m_text;
  Tokens m_tokens;
  std::vector<Level> m_levels{1};
  std::vector<Cut> m_cuts;         // in the order of the text
  bool m_atTable = false;          // the next token stands where a table does
  std::optional<Token> m_wrapper;  // the word `table`, just read in such a place
};

std::optional<std::string> Unwrapper::run() {
  Token token = m_tokens.next();
  while (token.kind != Token::Kind::end) {
    if (!step(token)) {
      return std::nullopt;
    }
    token = m_tokens.next();
  }
  return m_levels.size() == 1 ? result() : std::nullopt;
}

/// False when the text turns out not to be understood.
bool Unwrapper::step(const Token& token) {
  const bool isSymbol = token.kind == Token::Kind::symbol;
  if (token.kind == Token::Kind::torn) {
    return false;
  }
  if (isSymbol && m_text[token.begin] == '(') {
    open(token);
    return true;
  }
  m_wrapper.reset();
  if (isSymbol && m_text[token.begin] == ')') {
    return close(token);
  }
  follow(token);
  return true;
}

void Unwrapper::open(const Token& token) {
  Level inner;
  if (m_wrapper) {
    inner.call = Call::begun;
    inner.firstCut = m_cuts.size();
    m_cuts.push_back({m_wrapper->begin, m_wrapper->end, false});
    m_cuts.push_back({token.begin, token.end, false});
    m_wrapper.reset();
  } else {
    inner.inFrom = m_atTable;  // a join in parentheses
    Call& call = m_levels.back().call;
    call = call == Call::named ? Call::open : call == Call::none ? Call::none : Call::spoiled;
  }
  m_atTable = inner.inFrom;
  m_levels.push_back(inner);
}

bool Unwrapper::close(const Token& token) {
  const Level closed = m_levels.back();
  m_levels.pop_back();
  m_atTable = false;
  if (m_levels.empty()) {
    return false;
  }
  if (closed.call == Call::complete) {
    m_cuts[closed.firstCut].confirmed = m_cuts[closed.firstCut + 1].confirmed = true;
    m_cuts.push_back({token.begin, token.end, true});
  }
  if (m_levels.back().call == Call::open) {
    m_levels.back().call = Call::complete;
  }
  return true;
}

/// A token that is no parenthesis.
void Unwrapper::follow(const Token& token) {
  Level& level = m_levels.back();
  const bool isWord = token.kind == Token::Kind::word;
  const char symbol = token.kind == Token::Kind::symbol ? m_text[token.begin] : '\0';
  if (level.call != Call::none) {
    const bool isName = token.kind == Token::Kind::name || (isWord && !beginsClause(textOf(token)));
    if (level.call == Call::begun && isName) {
      level.call = Call::named;
    } else if (level.call == Call::named && symbol == '.') {
      level.call = Call::begun;
    } else {
      level.call = Call::spoiled;
    }
  } else if (isWord) {
    word(token);
  } else {
    level.inFrom = level.inFrom && symbol != ';';
    m_atTable = level.inFrom && symbol == ',';
  }
}

void Unwrapper::word(const Token& token) {
  bool& inFrom = m_levels.back().inFrom;
  const std::string_view text = textOf(token);
  const bool wasAtTable = m_atTable;
  m_atTable = false;
  if (sameWord(text, "from")) {
    inFrom = m_atTable = true;
  } else if (sameWord(text, "join")) {
    m_atTable = inFrom;
  } else if (sameWord(text, "lateral")) {
    m_atTable = wasAtTable;
  } else if (sameWord(text, "table")) {
    m_wrapper = wasAtTable ? std::optional(token) : std::nullopt;
  } else if (beginsClause(text)) {
    inFrom = false;
  }
}

std::optional<std::string> Unwrapper::result() const {
  std::string rest;
  std::size_t kept = 0;
  for (const Cut& cut : m_cuts) {
    if (cut.confirmed) {
      rest.append(m_text, kept, cut.begin - kept);
      kept = cut.end;
    }
  }
  if (kept == 0) {
    return std::nullopt;
  }
  return rest.append(m_text, kept);
}

}  // namespace

const Dialect& dialectOf(std::string_view engine) {
  const auto known = std::find_if(kDialects.begin() + 1, kDialects.end(),
                                  [engine](const Dialect& dialect) { return dialect.engine == engine; });
  return known != kDialects.end() ? *known : kDialects.front();
}

QuotedNames::QuotedNames(std::string_view statement, const Dialect& dialect) {
  Tokens tokens(statement, dialect);
  for (Token token = tokens.next(); token.kind != Token::Kind::end && token.kind != Token::Kind::torn;
       token = tokens.next()) {
    if (token.kind == Token::Kind::name) {
      m_names.push_back(unquoted(statement.substr(token.begin, token.end - token.begin)));
    }
  }
  std::sort(m_names.begin(), m_names.end());
}

bool QuotedNames::include(std::string_view reported) const {
  const auto first = std::lower_bound(m_names.begin(), m_names.end(), reported);
  return first != m_names.end() && std::string_view(*first).starts_with(reported) &&
         (first->size() == reported.size() || reported.size() >= kCutLength);
}

std::optional<std::string> unwrapTableFunctions(std::string_view statement, const Dialect& dialect) {
  return dialect.bareTableFunctions ? Unwrapper(statement, dialect).run() : std::nullopt;
}

}  // namespace host
