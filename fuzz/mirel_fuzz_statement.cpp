// SQL texts: what is unwrapped, and which names are in quotes.

#include <strings.h>

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/mirel_fuzz.h"
#include "platform/host/sqlcli/mirel_host_statement.h"
#include "platform/host/sqlcli/mirel_host_tokens.h"

namespace {

using host::Dialect;
using host::Token;

constexpr std::size_t kLongest = 1024;
constexpr std::size_t kLarge = 1 << 20;
constexpr unsigned long kCheap = 4096;  // runs for one with a large text, copies that differ in the middle

struct Piece {
  Token::Kind kind;
  std::string text;
  bool is(const char* word) const { return strcasecmp(text.c_str(), word) == 0; }
  bool operator==(const Piece&) const = default;
};

std::vector<Piece> piecesOf(const std::string& text, const Dialect& dialect) {
  host::Tokens tokens(text, dialect);
  std::vector<Piece> pieces;
  std::size_t position = 0;
  for (Token token = tokens.next(); token.kind != Token::Kind::end; token = tokens.next()) {
    require(position <= token.begin && token.begin < token.end && token.end <= text.size(), "tokens advance");
    position = token.end;
    pieces.push_back({token.kind, text.substr(token.begin, token.end - token.begin)});
    if (token.kind == Token::Kind::torn) {
      break;
    }
  }
  return pieces;
}

/// A function that is called like a word of the FROM clause looks like one once its wrapper is gone.
bool callsLikeFrom(const std::vector<Piece>& pieces) {
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    const Piece& word = pieces[i];
    if ((pieces[i - 1].is("(") || pieces[i - 1].is(".")) &&
        (word.is("table") || word.is("lateral") || word.is("from") || word.is("join"))) {
      return true;
    }
  }
  return false;
}

/// What is lost is the word `table` and a pair of parentheses, and what is new a name for a subquery; each as
/// often as it takes.
void checkAdapted(const std::string& text, const std::string& adapted, const Dialect& dialect) {
  std::vector<Piece> kept;
  std::size_t names = 0;
  std::size_t added = 0;
  for (const Piece& piece : piecesOf(adapted, dialect)) {
    if (piece.text == "mirel_" + std::to_string(names + 1)) {
      kept.pop_back();
      ++names;
      added += piece.text.size() + 2;
    } else {
      kept.push_back(piece);
    }
  }
  const std::vector<Piece> before = piecesOf(text, dialect);
  std::vector<Piece> lost;
  auto next = kept.begin();
  for (const Piece& piece : before) {
    if (next != kept.end() && *next == piece) {
      ++next;
    } else {
      lost.push_back(piece);
    }
  }
  const auto count = [&](const char* word) {
    return static_cast<std::size_t>(
        std::count_if(lost.begin(), lost.end(), [&](const Piece& piece) { return piece.is(word); }));
  };
  const std::size_t wrappers = count("table");
  require(next == kept.end() && lost.size() == 3 * wrappers, "what is lost are wrappers");
  require(count("(") == wrappers && count(")") == wrappers, "parentheses are lost in pairs");
  const auto bytes = [](const std::string& whole) {
    return whole.size() - static_cast<std::size_t>(std::count(whole.begin(), whole.end(), ' '));
  };
  require(bytes(text) + added == bytes(adapted) + 7 * wrappers, "nothing happens between tokens");
  require(callsLikeFrom(before) || !host::adaptStatement(adapted, dialect), "once is enough");
}

std::string unquoted(const std::string& token) {
  std::string name;
  for (std::size_t i = 1; i + 1 < token.size(); ++i) {
    name += token[i];
    i += token[i] == token.back() ? 1 : 0;
  }
  return name;
}

/// Names in quotes count as quoted, and of the words that stand there too only those that are spelled like
/// one.
void checkNames(const std::string& text, const Dialect& dialect) {
  const host::QuotedNames names(text, dialect);
  std::vector<std::string> quoted;
  std::vector<std::string> reported;
  for (const Piece& piece : piecesOf(text, dialect)) {
    reported.push_back(piece.kind == Token::Kind::name ? unquoted(piece.text) : piece.text);
    if (piece.kind == Token::Kind::name) {
      quoted.push_back(reported.back());
    }
  }
  for (const std::string& name : reported) {
    const bool expected = std::any_of(quoted.begin(), quoted.end(), [&](const std::string& one) {
      return one.starts_with(name) && (one.size() == name.size() || name.size() >= 60);
    });
    require(names.include(name) == expected, "a name counts as quoted where it is");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static unsigned long runs = 0;
  if (size == 0 || size > kLongest) {
    return 0;
  }
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::string large;
  while (runs % kCheap == 0 && large.size() < kLarge) {
    large += text.substr(0, size / 2) + std::to_string(large.size()) + text.substr(size / 2);
  }
  ++runs;
  for (const char* engine : {"", "SQLite", "PostgreSQL", "Microsoft SQL Server"}) {
    const Dialect& dialect = host::dialectOf(engine, "15");
    checkNames(text, dialect);
    const auto adapted = host::adaptStatement(text, dialect);
    if (adapted && text.find("mirel_") == text.npos) {
      checkAdapted(text, *adapted, dialect);
    }
    // Work that is not linear takes longer than the fuzzer waits.
    host::adaptStatement(large, dialect);
    host::QuotedNames(large, dialect).include(text);
  }
  return 0;
}
