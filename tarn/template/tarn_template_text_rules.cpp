// Rules about the text: its grammar, its bytes, its names.

#include <fmt/format.h>

#include <deque>
#include <unordered_map>

#include "json/mirel_json_scan.h"
#include "tarn/document/tarn_document_utf8.h"
#include "tarn/template/tarn_template_check.h"

namespace tarn {

namespace {

void syntax(const Site& site, Findings& findings) {
  const auto& error = site.source.error();
  if (error && !error->tooDeep) {
    findings.add(error->offset, "mirel ends with: " + error->line, likelyCause(site.source));
  }
}

void depth(const Site& site, Findings& findings) {
  const auto& error = site.source.error();
  if (error && error->tooDeep) {
    findings.add(error->offset,
                 "more than 1000 containers inside each other; mirel ends with: " + error->line,
                 "put less into each other");
  }
}

/// The last character that is neither blank nor a closing bracket.
std::size_t lastContent(const std::string& text) {
  return text.find_last_not_of(" \t\r\n}]");
}

bool hasEmptyContainer(const TemplateSource& source) {
  for (const TemplateNode& node : source.nodes()) {
    if (node.isEmpty) {
      return true;
    }
  }
  return false;
}

void emptyContainer(const Site& site, Findings& findings) {
  const TemplateSource& source = site.source;
  const std::size_t last = lastContent(source.bytes());
  const std::vector<TemplateNode>& nodes = source.nodes();
  for (std::size_t index = 1; index < nodes.size(); ++index) {
    const TemplateNode& node = nodes[index];
    const TemplateNode& parent = nodes[node.parent];
    if (!node.isEmpty || (!source.error() && node.begin >= last)) {
      continue;
    }
    const char* const kind = node.type == NodeType::object ? "object" : "array";
    const char* const effect = node.type != parent.type ? ", which is of another kind"
                               : node.parent == 0       ? ": what follows is lost"
                                                        : ": what follows moves up";
    findings.add(
        node.begin,
        fmt::format("the closing bracket of an empty {} also ends the container around it{}", kind, effect),
        "write a text instead, such as \"none\"");
  }
}

void afterRoot(const Site& site, Findings& findings) {
  const TemplateSource& source = site.source;
  const std::size_t rest = source.bytes().find_first_not_of(" \t\r\n", source.end());
  if (!source.error() && rest != std::string::npos && !hasEmptyContainer(source)) {
    findings.add(rest, "the template ends before this: what follows is not read",
                 "take it out, or move it inside");
  }
}

void nulByte(const Site& site, Findings& findings) {
  if (site.source.nul()) {
    findings.add(*site.source.nul(), "a NUL byte ends the template: what follows is not read", "take it out");
  }
}

void notUtf8(const Site& site, Findings& findings) {
  std::string_view rest = site.string.text;
  while (!rest.empty()) {
    const Utf8 next = nextUtf8(rest);
    if (!next.valid) {
      const auto at = static_cast<std::size_t>(rest.data() - site.string.text.data());
      findings.add(site.string.offset + at,
                   "\"" + std::string(rest.substr(0, next.length)) + "\" is no UTF-8",
                   "save the template in UTF-8");
      return;
    }
    rest.remove_prefix(next.length);
  }
}

/// What becomes of a run of backslashes and the character behind it, where that is not what was meant.
void explainEscape(std::size_t offset, std::size_t run, char next, Findings& findings) {
  const bool lineEnd = next == 'n' || next == 'N' || next == 'r' || next == 'R';
  const char* const becomes = next == 'n' || next == 'N' ? "a line feed" : "a carriage return";
  if (run >= 3) {
    findings.add(offset, fmt::format("{} backslashes in a row do not come out as half of them", run),
                 "let a shell command print them: printf '\\134'");
  } else if (run == 2 && lineEnd) {
    findings.add(offset, fmt::format("a doubled backslash before \"{}\" becomes {}, too", next, becomes),
                 "let a shell command print the backslash: printf '\\134'");
  } else if (run == 2) {
    findings.add(offset, "the quote behind a doubled backslash does not end the string",
                 "let the string end with another character");
  } else if (lineEnd) {
    findings.add(offset, fmt::format("\"\\{}\" becomes {}, as in small letters", next, becomes),
                 "let a shell command print the backslash: printf '\\134'");
  } else {
    findings.add(offset,
                 fmt::format("\"\\{}\" stays as it is: only \\\\, \\\", \\n and \\r are escapes", next),
                 "write the character itself, or \\\\ for a backslash");
  }
}

bool isEscape(std::size_t run, char next) {
  constexpr std::string_view kLineEnds = "nrNR";
  return run == 1 ? next == 'n' || next == 'r' || next == '"'
                  : run == 2 && next != '"' && kLineEnds.find(next) == std::string_view::npos;
}

void escape(const Site& site, Findings& findings) {
  const std::string_view text = site.string.text;
  std::size_t at = text.find('\\');
  while (at != std::string_view::npos) {
    const std::size_t end = std::min(text.find_first_not_of('\\', at), text.size());
    const char next = end < text.size() ? text[end] : ' ';
    if (!isEscape(end - at, next)) {
      explainEscape(site.string.offset + at, end - at, next, findings);
    }
    at = text.find('\\', end);
  }
}

void repeatedName(const Site& site, Findings& findings) {
  const std::vector<TemplateNode>& nodes = site.source.nodes();
  const auto first = static_cast<std::size_t>(site.node - nodes.data()) + 1;
  std::deque<std::string> kept;
  std::unordered_map<std::string_view, std::size_t> seen;
  for (std::size_t index = first; index < site.node->end; index = nodes[index].end) {
    const Raw key = site.source.key(nodes[index]);
    const bool isPlain = key.text.find_first_of(" \\") == std::string_view::npos;
    const std::string_view name = isPlain ? key.text : kept.emplace_back(nameInResult(key));
    const auto [former, isNew] = seen.emplace(name, key.offset);
    if (!isNew) {
      const Place place = site.source.place(former->second);
      findings.add(
          key.offset,
          fmt::format("\"{}\" stands at {}:{} already: the result has both, and most readers see one", name,
                      place.line, place.column),
          "give each member a name of its own");
    }
  }
}

}  // namespace

std::vector<Rule> textRules() {
  using enum Level;
  return {
      {"syntax",
       error,
       "mirel would stop with an error.",
       Look::source,
       syntax,
       R"({"limit": 10})",
       R"(1:11: error: mirel ends with: Expecting one of: ("{", "[", "string"); Actual: ":" on line 1 column 11; numbers are not read: write "10" [syntax])",
       R"({"limit": "10"})",
       {R"({"limit": "1,0: {"})"}},
      {"depth",
       error,
       "Containers may stand 1,000 deep in each other.",
       Look::source,
       depth,
       std::string(1001, '['),
       R"(1:1001: error: more than 1000 containers inside each other; mirel ends with: Expecting one of: ("string"); Actual: "[" on line 1 column 1001; put less into each other [depth])",
       std::string(1000, '[') + "\"\"" + std::string(1000, ']'),
       {}},
      {"empty-container",
       error,
       "The closing bracket of an empty object or array ends the container around it, too.",
       Look::source,
       emptyContainer,
       R"({"a": {}, "b": "lost"})",
       R"(1:7: error: the closing bracket of an empty object also ends the container around it: what follows is lost; write a text instead, such as "none" [empty-container])",
       R"({"a": "none", "b": "there"})",
       {"{}", "[ ]", R"({"a": "x", "b": {"c": {}}})", R"({"a": "{}"})"}},
      {"after-root",
       error,
       "Nothing is read behind the root's closing bracket.",
       Look::source,
       afterRoot,
       R"({"a": "x"}, {"b": "y"})",
       R"(1:11: error: the template ends before this: what follows is not read; take it out, or move it inside [after-root])",
       R"([{"a": "x"}, {"b": "y"}])",
       {"{\"a\": \"x\"}\r\n\t "}},
      {"repeated-name",
       warning,
       "Members of one name are all kept, but most readers of JSON see only one of them.",
       Look::object,
       repeatedName,
       R"({"a": "1", "$foreach db [a]": "2"})",
       R"(1:13: warning: "a" stands at 1:3 already: the result has both, and most readers see one; give each member a name of its own [repeated-name])",
       R"({"a": "1", "A": "2"})",
       {R"([{"a": "1"}, {"a": "1"}])", R"({"a": {"a": "1"}})"}},
      {"escape",
       warning,
       R"(Only \\, \", \n and \r are escapes, and a doubled backslash before n or r is none.)",
       Look::string,
       escape,
       R"({"path": "C:\\new"})",
       R"(1:13: warning: a doubled backslash before "n" becomes a line feed, too; let a shell command print the backslash: printf '\134' [escape])",
       R"({"path": "C:\\old"})",
       {R"({"a": "\"x\" \n \r \\ \\t"})"}},
      {"nul-byte",
       error,
       "The template ends at its first NUL byte.",
       Look::source,
       nulByte,
       std::string("{\"a\": \"x\"}\0", 11),
       "1:11: error: a NUL byte ends the template: what follows is not read; take it out [nul-byte]",
       R"({"a": "x"})",
       {R"({"a": "\0"})"}},
      {"not-utf8",
       warning,
       "Bytes are passed on as they are; readers of the result expect UTF-8.",
       Look::string,
       notUtf8,
       "{\"\xC3\xA9\": \"\xE9\"}",
       R"(1:9: warning: "\xe9" is no UTF-8; save the template in UTF-8 [not-utf8])",
       "{\"\xC3\xA9\": \"\xC3\xA9\"}",
       {}},
  };
}

}  // namespace tarn
