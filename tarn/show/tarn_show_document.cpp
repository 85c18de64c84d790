#include "tarn/show/tarn_show_document.h"

#include <algorithm>
#include <map>

#include "tarn/show/tarn_show_brief.h"
#include "tarn/show/tarn_show_table.h"
#include "tarn/show/tarn_show_value.h"

namespace tarn {

namespace {

constexpr std::size_t kIndent = 2;
constexpr std::size_t kLinesAtMost = 12;     // of a listing
constexpr std::size_t kMembersAtMost = 200;  // of a container
constexpr std::size_t kFoldsAtMost = 3;      // lines of a value
constexpr std::size_t kTitleAtMost = 36;
constexpr std::size_t kValueAtLeast = 20;  // columns, however narrow the terminal is
constexpr std::size_t kBarWidth = 20;
constexpr std::size_t kDepthAtMost = 16;    // sections in sections
constexpr std::size_t kBytesAtMost = 4096;  // of a text that is shown on a line

std::string below(const std::string& pointer, const Node& member) {
  std::string place = pointer + "/";
  appendToken(member.key, place);
  return member.repeat == 1 ? place : place + "#" + std::to_string(member.repeat);
}

/// Members that are silent for one reason, one behind the other.
struct Reason {
  std::string text;
  bool isOptional;  ///< nothing is wrong
  std::vector<Shown> pointers;
  /// Where those of elements that share a fact stand among the pointers, and how many they are.
  struct Several {
    std::size_t index, count;
  };
  std::map<const Fact*, Several> several;
};

void add(std::vector<Reason>& reasons, const std::string& text, const Fact* fact, std::string_view pointer) {
  const bool isOptional = fact != nullptr && fact->isOptional;
  auto same = std::find_if(reasons.begin(), reasons.end(), [&](const Reason& known) {
    return known.text == text && known.isOptional == isOptional;
  });
  if (same == reasons.end()) {
    same = reasons.insert(same, {text, isOptional, {}, {}});
  }
  if (fact != nullptr) {
    const auto [several, isNew] = same->several.insert({fact, {same->pointers.size(), 0}});
    if (++several->second.count; !isNew) {
      same->pointers[several->second.index] = say("{} ({} times)", shown(fact->place), several->second.count);
      return;
    }
  }
  same->pointers.push_back(shown(pointer));
}

Shown joined(const std::vector<Shown>& parts) {
  Shown all;
  for (const Shown& part : parts) {
    all += all.text().empty() ? part : ", " + part;
  }
  return all;
}

bool isContainer(const Node& node) {
  return node.kind == NodeKind::object || node.kind == NodeKind::array;
}

}  // namespace

bool DocumentView::isSingle(const Node& node) const {
  return !isContainer(node) && withoutEnd(node.text).find('\n') == std::string_view::npos;
}

Shown DocumentView::titleOf(const Node& node, const std::string& pointer) const {
  const Fact* const fact = m_facts.find(pointer);
  return shown(fact == nullptr ? node.key.substr(0, kBytesAtMost) : std::string_view(fact->title));
}

/// "Database SAMPLE": an element by what names it.
Shown DocumentView::titleOf(const Node& element, const Fact& array) const {
  const Node* const name = array.names.empty() ? nullptr : m_tree.member(element, array.names[0]);
  return name == nullptr ? shown(array.title)
                         : say("{} {}", shown(array.title), shown(name->text.substr(0, kBytesAtMost)));
}

DocumentView::Single DocumentView::singleOf(const Node& node, const std::string& pointer) const {
  const Fact* const fact = m_facts.find(pointer);
  const std::string_view text = m_lines.look().all ? node.text : node.text.substr(0, kBytesAtMost);
  const Unit unit = fact == nullptr ? Unit::text : fact->unit;
  const std::string_view digits = m_lines.look().all ? text : withoutDecimals(text, unit);
  Single single = {.title = fitted(titleOf(node, pointer), kTitleAtMost),
                   .value = digits.size() == text.size() ? valueOf(text, unit) : shown(digits) + "…",
                   .part = fact == nullptr ? -1 : partOf(m_tree, node, *fact),
                   .place = pointer,
                   .bytes = node.text.size()};
  if (digits.size() < text.size()) {
    m_lines.cut();
  }
  return single;
}

void DocumentView::lay(const Single& single, std::size_t titles, std::size_t values, std::size_t width,
                       std::vector<Shown>& lines) {
  Shown before = single.title + blanks(titles - columns(single.title.text()));
  if (single.part >= 0) {
    lines.push_back(before + single.value + blanks(values + kIndent - columns(single.value.text())) +
                    say("{}  {}", barOf(single.part, kBarWidth), percentOf(single.part)));
    return;
  }
  const std::vector<Shown> folds = folded(single.value, std::max(width, titles + kValueAtLeast) - titles);
  const bool isCut = !m_lines.look().all && (folds.size() > kFoldsAtMost || single.bytes > kBytesAtMost);
  for (std::size_t i = 0; i < std::min(folds.size(), isCut ? kFoldsAtMost : folds.size()); ++i) {
    lines.push_back(before + folds[i]);
    before = blanks(titles);
  }
  if (isCut) {
    lines.push_back(before + say("… {} in all: {}", sizeOf(single.bytes), shown(single.place)));
    m_lines.cut();
  }
}

void DocumentView::contents(const Node& node, const std::string& pointer, std::size_t indent) {
  if (!isContainer(node)) {
    listing(node.text, indent);
  } else if (isTable(m_tree, node)) {
    showTable(m_tree, node, m_facts, pointer, indent, m_lines);
  } else if (m_depth == kDepthAtMost) {
    m_lines.rest(indent, node.count, "deeper member");
  } else {
    ++m_depth;
    if (node.kind == NodeKind::array) {
      elements(node, pointer, indent);
    } else {
      singles(node, pointer, indent);
      blocks(node, pointer, indent);
    }
    --m_depth;
  }
}

void DocumentView::singles(const Node& container, const std::string& pointer, std::size_t indent) {
  std::vector<Single> singles;
  std::size_t count = 0;
  const std::size_t most = m_lines.most(container.count, kMembersAtMost);
  for (const Node& member : m_tree.children(container)) {
    if (isSingle(member) && !isSilent(member) && count++ < most) {
      singles.push_back(singleOf(member, below(pointer, member)));
    }
  }
  std::size_t titles = 0;
  std::size_t values = 0;
  for (const Single& single : singles) {
    titles = std::max(titles, columns(single.title.text()));
    values = single.part < 0 ? values : std::max(values, columns(single.value.text()));
  }
  std::vector<Shown> lines;
  for (const Single& single : singles) {
    lay(single, titles + kIndent, values, m_lines.widthBehind(indent), lines);
  }
  m_lines.list(indent, lines);
  m_lines.rest(indent, count - singles.size(), "member");
}

void DocumentView::blocks(const Node& container, const std::string& pointer, std::size_t indent) {
  const std::size_t most = m_lines.most(container.count, kMembersAtMost);
  std::size_t count = 0;
  for (const Node& member : m_tree.children(container)) {
    if (!isSingle(member) && !isSilent(member) && count++ < most) {
      block(member, below(pointer, member), indent);
    }
  }
  m_lines.rest(indent, count - std::min(count, most), "member");
}

/// What stands below a heading.
void DocumentView::section(const Node& node, const std::string& pointer, std::size_t indent) {
  const std::size_t before = m_lines.count();
  contents(node, pointer, indent);
  if (m_lines.count() == before) {
    m_lines.line(indent, "Nothing answered.");
  }
}

/// An array that holds parts of the document shows them without a heading of its own.
void DocumentView::block(const Node& node, const std::string& pointer, std::size_t indent) {
  const Fact* const fact = m_facts.find(pointer);
  if (fact != nullptr && fact->isContainer && node.kind == NodeKind::array) {
    elements(node, pointer, indent);
    return;
  }
  m_lines.gap();
  m_lines.heading(indent, titleOf(node, pointer), shown(pointer));
  section(node, pointer, indent + kIndent);
}

void DocumentView::elements(const Node& array, const std::string& pointer, std::size_t indent) {
  const std::size_t most = m_lines.most(array.count, kMembersAtMost);
  const Fact* const fact = m_facts.find(pointer);
  std::size_t number = 0;
  for (const Node& element : m_tree.children(array)) {
    if (number == most) {
      break;
    }
    const std::string place = pointer + "/" + std::to_string(number++);
    if (isSingle(element)) {
      std::vector<Shown> lines;
      Single single = singleOf(element, place);
      single.title = {};
      lay(single, 0, 0, m_lines.widthBehind(indent), lines);
      m_lines.list(indent, lines);
      continue;
    }
    m_lines.gap();
    if (fact == nullptr) {
      m_lines.heading(indent, shown(place), {});
    } else {
      m_lines.heading(indent, titleOf(element, *fact), shown(place));
    }
    section(element, place, indent + kIndent);
  }
  m_lines.rest(indent, array.count - number, "element");
}

void DocumentView::listing(std::string_view text, std::size_t indent) {
  const std::string_view lines = withoutEnd(text);
  const auto count = static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n')) + 1;
  const std::size_t most = m_lines.most(count, kLinesAtMost);
  std::string_view rest = lines;
  for (std::size_t i = 0; i < most; ++i) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = withoutEnd(rest.substr(0, end));
    m_lines.line(indent, shownLines(m_lines.look().all ? line : line.substr(0, kBytesAtMost)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  m_lines.rest(indent, count - most, "line");
}

void DocumentView::member(const Node& node, const std::string& pointer) {
  const Fact* const fact = m_facts.find(pointer);
  m_lines.heading(0, titleOf(node, pointer), shown(pointer));
  if (fact != nullptr) {
    m_lines.words(0, shown(fact->meaning));
  }
  m_lines.gap();
  if (isSingle(node)) {
    const Single single = singleOf(node, pointer);
    const Shown part =
        single.part < 0 ? Shown() : say("  {}  {}", barOf(single.part, kBarWidth), percentOf(single.part));
    m_lines.line(0, single.value + part);
  } else {
    contents(node, pointer, 0);
  }
}

void DocumentView::silent(const StatusSink& status) {
  const std::uint64_t count = status.asked() - status.answered();
  if (count == 0) {
    return;
  }
  m_lines.gap();
  m_lines.heading(0, say("Did not answer: {} of {}", count, status.asked()), {});
  const std::size_t most = m_lines.most(count, kMembersAtMost);
  const std::vector<std::string> missing = missingNeeds(m_tree, m_facts);
  std::vector<Reason> reasons;
  std::size_t taken = 0;
  status.silent().forEach([&](Silence silence, std::string_view pointer) {
    if (taken++ < most) {
      const Fact* const fact = m_facts.find(pointer);
      const bool isMissing =
          fact != nullptr && std::find(missing.begin(), missing.end(), fact->needs) != missing.end();
      add(reasons, isMissing ? reasonOf(m_facts.find(fact->needs), Silence::array) : reasonOf(fact, silence),
          fact, pointer);
    }
  });
  std::stable_partition(reasons.begin(), reasons.end(),
                        [](const Reason& reason) { return !reason.isOptional; });
  for (const Reason& reason : reasons) {
    m_lines.words(kIndent, reason.text.empty() ? "Nothing tells why." : shown(reason.text));
    m_lines.words(2 * kIndent, joined(reason.pointers));
  }
  m_lines.rest(kIndent, count - most, "member");
}

}  // namespace tarn
