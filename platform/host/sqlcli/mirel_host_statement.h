#pragma once
/// SQL texts, read just closely enough to tell what is quoted and where a FROM clause stands.
///
/// Strings, quoted names and comments are respected as the engine writes them; nothing is parsed beyond
/// that. The work is linear in the text, and any text will do: what cannot be understood is left alone.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What an engine has where the product's FROM clause says table(f(args)).
enum class TableFunctions {
  unknown,  ///< the statement is left as it is
  bare,     ///< f(args)
  views,    ///< f, a view; in the schema sysproc where the statement names none
};

/// How an engine's SQL is written and what it needs, where that differs from the standard.
struct Dialect {
  std::string_view engine = {};  ///< as the driver names it (SQL_DBMS_NAME); empty: every other engine
  int before = 0;                ///< major version of the engine from which on this no longer holds; 0: all
  TableFunctions tableFunctions = TableFunctions::unknown;
  bool namedSubqueries = false;  ///< refuses a subquery in FROM that bears no name, which the product takes
  bool bracketNames = false;     ///< [name] is a quoted name; elsewhere brackets are arrays
  bool backtickNames = false;    ///< `name` is one, too
  bool nestedComments = false;   ///< a /* */ comment may hold others
  bool dollarQuotes = false;     ///< $tag$text$tag$ and E'text with \' in it' are strings
  bool backslashes = false;      ///< a backslash in a string takes the next character with it
  bool numberSignComments = false;     ///< # begins a comment, -- only before a blank
  bool rowByRow = false;               ///< the driver, put on a row of a block, reads from another
  const char* sessionStart = nullptr;  ///< a statement that opens every session; null: none
  const char* version = nullptr;       ///< a query for the engine's version; null: the driver tells it
};

/// The dialect of an engine, by its name and version ("15.0.18") as the driver tells them.
const Dialect& dialectOf(std::string_view engine, std::string_view version);

/// The quoted names of a statement.
class QuotedNames {
 public:
  QuotedNames() = default;
  QuotedNames(std::string_view statement, const Dialect& dialect);

  /// Whether the statement wrote this column name in quotes. A long name may have been cut by the engine or
  /// by the buffer it was reported in; its beginning is enough then.
  bool include(std::string_view reported) const;

 private:
  std::vector<std::string> m_names;  // sorted
};

/// The statement in the form that the engine understands: every `table(f(args))` in a FROM clause turned into
/// what it has for that, and a name given to every subquery there that has none, as far as the dialect asks
/// for it. Nothing when there is nothing to do, the engine is unknown, or the statement's quotes or
/// parentheses do not match; the statement then stands as it is.
std::optional<std::string> adaptStatement(std::string_view statement, const Dialect& dialect);

}  // namespace host
