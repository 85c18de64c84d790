#include "tarn/compare/tarn_compare_print.h"

#include <algorithm>

#include "tarn/compare/tarn_compare_lines.h"

namespace tarn {

namespace {

using Lines = std::vector<std::string_view>;
using Text = std::optional<std::string_view>;

bool isListing(const Text& text) {
  return text && text->find('\n') != std::string_view::npos;
}

/// Both are texts, as far as there are both.
bool areTexts(const Change& change) {
  return (change.before == nullptr || change.before->kind == NodeKind::text) &&
         (change.after == nullptr || change.after->kind == NodeKind::text);
}

Text textOf(const Node* node) {
  return node == nullptr ? Text() : Text(node->text);
}

std::string jsonOf(const Tree& tree, const Node& node) {
  JsonText json;
  appendValue(tree, &node, json);
  return json.text();
}

/// A text as it is, in quotes where its ends would not show.
Shown shownText(std::string_view text) {
  if (!text.empty() && text.front() != ' ' && text.back() != ' ') {
    return shown(text);
  }
  std::string quoted;
  appendJsonString(text, quoted);
  return shown(quoted);
}

Shown shownValue(const Tree& tree, const Node& node, bool asJson) {
  return node.kind == NodeKind::text && !asJson ? shownText(node.text) : shown(jsonOf(tree, node));
}

Shown shownRange(std::size_t first, std::size_t count) {
  return count == 1 ? say("{}", first + 1) : say("{},{}", count == 0 ? first : first + 1, count);
}

void addHunk(const Hunk& hunk, const Lines& before, const Lines& after, std::vector<Shown>& lines) {
  for (std::size_t line = 0; line < hunk.gone; ++line) {
    lines.push_back("  -" + shown(before[hunk.before + line]));
  }
  for (std::size_t line = 0; line < hunk.come; ++line) {
    lines.push_back("  +" + shown(after[hunk.after + line]));
  }
}

/// Of a listing that came or went, all lines; of one that changed, the hunks.
std::vector<Shown> listingLines(const Text& oldText, const Text& newText, const Shown& head) {
  std::vector<Shown> lines = {head};
  const Lines before = oldText ? linesOf(*oldText) : Lines();
  const Lines after = newText ? linesOf(*newText) : Lines();
  if (!oldText || !newText) {
    addHunk({0, before.size(), 0, after.size()}, before, after, lines);
    return lines;
  }
  for (const Hunk& hunk : hunksOf(before, after)) {
    lines.push_back(
        say("  @@ -{} +{} @@", shownRange(hunk.before, hunk.gone), shownRange(hunk.after, hunk.come)));
    addHunk(hunk, before, after, lines);
  }
  return lines;
}

}  // namespace

Shown shownRoute(const Route& route) {
  std::string text;
  for (const RouteStep& step : route) {
    if (step.row.empty()) {
      text += pointerOf({step});
      continue;
    }
    text += '[';
    for (const Node* const member : step.row) {
      text += member == step.row.front() ? "" : ",";
      text.append(member->key).append("=").append(member->text);
    }
    text += ']';
  }
  return shown(text.empty() ? "/" : text);
}

std::vector<Shown> printed(const Shown& place, const Text& before, const Text& after) {
  const Shown sign = shown(!before ? "+ " : !after ? "- " : "");
  if (isListing(before) || isListing(after)) {
    return listingLines(before, after, sign + place + ":");
  }
  if (before && after) {
    return {say("{}: {} → {}", place, shownText(*before), shownText(*after))};
  }
  return {say("{}{}: {}", sign, place, shownText(before ? *before : *after))};
}

std::vector<Shown> printed(const Comparison& comparison, const Change& change) {
  const Shown route = shownRoute(comparison.route(change));
  if (areTexts(change)) {
    return printed(route, textOf(change.before), textOf(change.after));
  }
  if (change.before != nullptr && change.after != nullptr) {
    const bool otherKind = change.before->kind != change.after->kind;
    return {say("{}: {} → {}", route, shownValue(comparison.before(), *change.before, otherKind),
                shownValue(comparison.after(), *change.after, otherKind))};
  }
  const bool isNew = change.before == nullptr;
  return {say("{}{}: {}", shown(isNew ? "+ " : "- "), route,
              isNew ? shownValue(comparison.after(), *change.after, false)
                    : shownValue(comparison.before(), *change.before, false))};
}

std::string_view wordOf(const Change& change) {
  return change.before == nullptr ? "added" : change.after == nullptr ? "removed" : "changed";
}

void appendRow(const Route& route, JsonText& json) {
  const auto row =
      std::find_if(route.rbegin(), route.rend(), [](const RouteStep& step) { return !step.row.empty(); });
  if (row == route.rend()) {
    json.null();
    return;
  }
  json.object();
  for (const Node* const member : row->row) {
    json.key(member->key);
    member->kind == NodeKind::text ? json.element(member->text) : json.raw(member->text);
  }
  json.end();
}

void appendValue(const Tree& tree, const Node* node, JsonText& json) {
  struct Open {
    const Node* end;
    bool isObject;
  };
  if (node == nullptr) {
    json.null();
    return;
  }
  std::vector<Open> open;
  const Node* const first = &tree.root();
  for (const Node* at = node; at != first + node->end; ++at) {
    for (; !open.empty() && open.back().end == at; open.pop_back()) {
      json.end();
    }
    if (!open.empty() && open.back().isObject) {
      json.key(at->key);
    }
    if (at->kind == NodeKind::text) {
      json.element(at->text);
    } else if (at->kind == NodeKind::scalar) {
      json.raw(at->text);
    } else {
      const bool isObject = at->kind == NodeKind::object;
      isObject ? json.object() : json.array();
      open.push_back({first + at->end, isObject});
    }
  }
  for (; !open.empty(); open.pop_back()) {
    json.end();
  }
}

}  // namespace tarn
