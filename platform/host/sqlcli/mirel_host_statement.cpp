#include "platform/host/sqlcli/mirel_host_statement.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "platform/host/sqlcli/mirel_host_tokens.h"

namespace host {

namespace {

/// The driver takes the text encoding from the environment of the process; facts are UTF-8. And groups come
/// in the order of their keys, not of a hash table that differs from one day to the next. A data source that
/// only reads lets nothing but queries through.
constexpr const char* kPostgresqlSession =
    "select set_config('client_encoding', 'UTF8', false), set_config('enable_hashagg', 'off', false)";

constexpr const char* kPostgresqlVersion = "select current_setting('server_version')";

/// The first is that of every engine not listed; for the others the first that fits holds.
constexpr std::array<Dialect, 6> kDialects{{
    {.backtickNames = true},
    {.engine = "SQLite",
     .tableFunctions = TableFunctions::bare,
     .bracketNames = true,
     .backtickNames = true,
     .version = "select sqlite_version()"},
    {.engine = "MariaDB",
     .tableFunctions = TableFunctions::views,
     .namedSubqueries = true,
     .backtickNames = true,
     .backslashes = true,
     .numberSignComments = true,
     .rowByRow = true,
     .version = "select version()"},
    {.engine = "PostgreSQL",
     .before = 16,
     .tableFunctions = TableFunctions::bare,
     .namedSubqueries = true,
     .nestedComments = true,
     .dollarQuotes = true,
     .sessionStart = kPostgresqlSession,
     .version = kPostgresqlVersion},
    {.engine = "PostgreSQL",
     .tableFunctions = TableFunctions::bare,
     .nestedComments = true,
     .dollarQuotes = true,
     .sessionStart = kPostgresqlSession,
     .version = kPostgresqlVersion},
    {.engine = "Microsoft SQL Server", .bracketNames = true, .nestedComments = true},
}};

/// The shortest name limit among engines, less a torn character: a shorter name was not cut.
constexpr std::size_t kCutLength = 60;

/// Words that end the list of tables after FROM.
constexpr std::array<std::string_view, 16> kClauses{
    "select", "where",     "group",  "having", "order", "window", "union", "intersect",
    "except", "returning", "values", "limit",  "fetch", "for",    "set",   "with"};

/// Further words that may follow a table in FROM and are not its name.
constexpr std::array<std::string_view, 11> kBehindTables{
    "join", "inner", "left", "right", "full", "cross", "natural", "on", "using", "tablesample", "offset"};

bool sameWord(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

template <std::size_t count>
bool isOneOf(const std::array<std::string_view, count>& words, std::string_view word) {
  return std::any_of(words.begin(), words.end(),
                     [word](std::string_view known) { return sameWord(word, known); });
}

bool beginsClause(std::string_view word) {
  return isOneOf(kClauses, word);
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

/// Follows a statement token by token and notes what has to be cut out of it and put into it.
class Adapter {
 public:
  Adapter(std::string_view statement, const Dialect& dialect)
      : m_text(statement), m_dialect(dialect), m_tokens(statement, dialect) {}

  std::optional<std::string> run();

 private:
  /// How far the inside of a `table(...)` looks like one call of a function.
  enum class Call { none, begun, named, open, complete, spoiled };

  /// What an open parenthesis encloses; the outermost level is the statement.
  struct Level {
    std::size_t begin = 0;      ///< of the parenthesis
    bool inFrom = false;        ///< a comma leads to the next table
    Call call = Call::none;     ///< of a `table(`
    std::size_t firstEdit = 0;  ///< of a `table(`: its edits in m_edits
    std::size_t function = 0;   ///< of a `table(`: where the function's name begins
    bool qualified = false;     ///< of a `table(`: that name has its schema
    std::size_t arguments = 0;  ///< of a `table(`: where the arguments begin, with their parenthesis
    std::size_t end = 0;        ///< of a `table(`: where they end
    bool atTable = false;       ///< stands where a table does
    bool subquery = false;      ///< begins like a query, and stands there
  };

  /// Replaces what stands from begin to end.
  struct Edit {
    std::size_t begin;
    std::size_t end;
    bool confirmed;
    std::string text{};
  };

  bool step(const Token& token);
  void name(const Token& next);
  void open(const Token& token);
  bool close(const Token& token);
  void unwrap(const Level& wrapper, const Token& end);
  void word(const Token& token);
  void follow(const Token& token);
  std::optional<std::string> result() const;
  std::string_view textOf(const Token& token) const {
    return m_text.substr(token.begin, token.end - token.begin);
  }

  const std::string_view m_text;
  const Dialect& m_dialect;
  Tokens m_tokens;
  std::vector<Level> m_levels{1};
  std::vector<Edit> m_edits;       // in the order of the text
  std::size_t m_names = 0;         // given to subqueries so far
  std::size_t m_nameless = 0;      // where a subquery has just ended; 0: nowhere
  bool m_atTable = false;          // the next token stands where a table does
  std::optional<Token> m_wrapper;  // the word `table`, just read in such a place
};

std::optional<std::string> Adapter::run() {
  Token token = m_tokens.next();
  while (token.kind != Token::Kind::end) {
    if (!step(token)) {
      return std::nullopt;
    }
    token = m_tokens.next();
  }
  name(token);
  return m_levels.size() == 1 ? result() : std::nullopt;
}

/// False when the text turns out not to be understood.
bool Adapter::step(const Token& token) {
  const bool isSymbol = token.kind == Token::Kind::symbol;
  if (token.kind == Token::Kind::torn) {
    return false;
  }
  name(token);
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

/// Names the subquery that has just ended, unless the next token does.
void Adapter::name(const Token& next) {
  const bool named =
      next.kind == Token::Kind::name || (next.kind == Token::Kind::word && !beginsClause(textOf(next)) &&
                                         !isOneOf(kBehindTables, textOf(next)));
  if (m_nameless != 0 && !named) {
    m_edits.push_back({m_nameless, m_nameless, true, " as mirel_" + std::to_string(++m_names)});
    const bool mayJoin = next.kind != Token::Kind::end &&
                         std::string_view("),;").find(m_text[next.begin]) == std::string_view::npos;
    if (mayJoin && next.begin == m_nameless) {
      m_edits.back().text += ' ';
    }
  }
  m_nameless = 0;
}

void Adapter::open(const Token& token) {
  Level inner;
  inner.begin = token.begin;
  inner.atTable = m_atTable;
  if (m_wrapper) {
    inner.call = Call::begun;
    inner.firstEdit = m_edits.size();
    m_edits.push_back({m_wrapper->begin, m_wrapper->end, false});
    m_edits.push_back({token.begin, token.end, false});
    m_wrapper.reset();
  } else {
    inner.inFrom = m_atTable;  // a join in parentheses
    Call& call = m_levels.back().call;
    call = call == Call::named ? Call::open : call == Call::none ? Call::none : Call::spoiled;
  }
  m_atTable = inner.inFrom;
  m_levels.push_back(inner);
}

bool Adapter::close(const Token& token) {
  const Level closed = m_levels.back();
  m_levels.pop_back();
  m_atTable = false;
  if (m_levels.empty()) {
    return false;
  }
  if (closed.call == Call::complete) {
    unwrap(closed, token);
  }
  if (m_levels.back().call == Call::open) {
    m_levels.back().call = Call::complete;
    m_levels.back().arguments = closed.begin;
    m_levels.back().end = token.end;
  }
  m_nameless = closed.subquery && m_dialect.namedSubqueries ? token.end : 0;
  return true;
}

/// Takes off a `table(...)` that turned out to hold one call; of that, too, what the engine does not know.
void Adapter::unwrap(const Level& wrapper, const Token& end) {
  m_edits[wrapper.firstEdit].confirmed = m_edits[wrapper.firstEdit + 1].confirmed = true;
  if (m_dialect.tableFunctions == TableFunctions::views) {
    m_edits.erase(m_edits.begin() + static_cast<std::ptrdiff_t>(wrapper.firstEdit) + 2, m_edits.end());
    m_edits.push_back({wrapper.function, wrapper.function, !wrapper.qualified, "sysproc."});
    m_edits.push_back({wrapper.arguments, wrapper.end, true});
  }
  m_edits.push_back({end.begin, end.end, true});
}

/// A token that is no parenthesis.
void Adapter::follow(const Token& token) {
  Level& level = m_levels.back();
  const bool isWord = token.kind == Token::Kind::word;
  const char symbol = token.kind == Token::Kind::symbol ? m_text[token.begin] : '\0';
  if (level.call != Call::none) {
    const bool isName = token.kind == Token::Kind::name || (isWord && !beginsClause(textOf(token)));
    if (level.call == Call::begun && isName) {
      level.call = Call::named;
      level.function = level.qualified ? level.function : token.begin;
    } else if (level.call == Call::named && symbol == '.') {
      level.call = Call::begun;
      level.qualified = true;
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

void Adapter::word(const Token& token) {
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
    m_levels.back().subquery = m_levels.back().subquery || (wasAtTable && m_levels.back().atTable);
  }
}

std::optional<std::string> Adapter::result() const {
  std::string rest;
  std::size_t kept = 0;
  for (const Edit& edit : m_edits) {
    if (edit.confirmed) {
      rest.append(m_text, kept, edit.begin - kept).append(edit.text);
      kept = edit.end;
    }
  }
  if (kept == 0) {
    return std::nullopt;
  }
  return rest.append(m_text, kept);
}

}  // namespace

const Dialect& dialectOf(std::string_view engine, std::string_view version) {
  const int major = std::atoi(std::string(version).c_str());
  const auto known = std::find_if(kDialects.begin() + 1, kDialects.end(), [&](const Dialect& dialect) {
    return dialect.engine == engine && (dialect.before == 0 || major < dialect.before);
  });
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

std::optional<std::string> adaptStatement(std::string_view statement, const Dialect& dialect) {
  return dialect.tableFunctions != TableFunctions::unknown ? Adapter(statement, dialect).run() : std::nullopt;
}

}  // namespace host
