#include "tarn/page/tarn_page_summary.h"

#include <fmt/format.h>

#include "tarn/compare/tarn_compare_print.h"
#include "tarn/document/tarn_document_shown.h"

namespace tarn {

namespace {

constexpr std::size_t kSilentShown = 200;

/// A name that is not known, for want of one the file's.
std::string nameOf(const PageSubject& subject) {
  return subject.status.roles()[Role::host].value_or(subject.file);
}

void addFact(std::string_view title, const std::optional<std::string>& text, std::string& out) {
  out += fmt::format("<div><dt>{}</dt><dd>{}</dd></div>\n", title, text ? html(*text) : "not told");
}

std::string stateOf(const PageSubject& subject) {
  const State state = subject.tree.ending().state;
  return state == State::whole ? (subject.status.isDocument() ? "whole" : "foreign")
                               : (state == State::cut ? "cut" : "damaged");
}

std::string headerOf(const PageSubject& subject) {
  const Roles& roles = subject.status.roles();
  std::string out = fmt::format("<header>\n<h1>{}</h1>\n<dl>\n", html(nameOf(subject)));
  addFact("Collected", roles[Role::time], out);
  addFact("Engine", roles[Role::engine], out);
  addFact("Database", roles[Role::database] ? roles[Role::database] : "no database", out);
  addFact("Document", stateOf(subject), out);
  addFact("Answered", fmt::format("{} of {}", subject.status.answered(), subject.status.asked()), out);
  out += "</dl>\n";
  const Ending& ending = subject.tree.ending();
  if (ending.state != State::whole) {
    out += fmt::format(
        "<p class=\"trouble\">The document {} at line {}, column {}{}{}. What is whole of it is shown.</p>\n",
        ending.problem, ending.place.line, ending.place.column, ending.innermost.empty() ? "" : " in ",
        html(ending.innermost));
  }
  return out + "</header>\n";
}

std::string changesOf(const PageSubject& subject) {
  if (subject.changes == nullptr) {
    return "";
  }
  std::size_t changed = 0;
  std::size_t added = 0;
  std::size_t removed = 0;
  for (const Change& change : subject.changes->changes()) {
    ++(change.before == nullptr ? added : change.after == nullptr ? removed : changed);
  }
  return fmt::format(
      "<section id=\"changes\" aria-labelledby=\"changes-title\">\n<h2 id=\"changes-title\">What "
      "changed</h2>\n"
      "<p>Since {}: {} changed, {} added, {} removed. Facts that change by themselves are left out.</p>\n"
      "</section>\n",
      html(subject.changedSince), changed, added, removed);
}

/// A pointer in an address: what is no plain character stands as %XX.
std::string inAddress(std::string_view pointer) {
  constexpr std::string_view kPlain = "/~-_.";
  std::string out;
  for (const char byte : pointer) {
    const bool plain =
        isalnum(static_cast<unsigned char>(byte)) != 0 || kPlain.find(byte) != std::string_view::npos;
    out += plain ? std::string(1, byte) : fmt::format("%{:02X}", static_cast<unsigned char>(byte));
  }
  return out;
}

std::string silentItem(const PageSubject& subject, Silence silence, std::string_view pointer) {
  const Fact* const fact = subject.facts.find(pointer);
  const std::string reason = reasonOf(fact, silence);
  const std::string title = fact == nullptr ? std::string(pointer) : fact->title;
  return fmt::format("<li><a href=\"#{}\">{}</a>{}{}</li>\n", inAddress(pointer), html(title),
                     reason.empty() ? "" : ": ", html(reason));
}

std::string silentOf(const PageSubject& subject) {
  std::string items;
  std::size_t count = 0;
  subject.status.silent().forEach([&](Silence silence, std::string_view pointer) {
    if (count++ < kSilentShown) {
      items += silentItem(subject, silence, pointer);
    }
  });
  if (count == 0) {
    return "";
  }
  const std::string more =
      count > kSilentShown ? fmt::format("<p>and {} more</p>\n", count - kSilentShown) : "";
  return fmt::format(
      "<section id=\"silent\" aria-labelledby=\"silent-title\">\n<h2 id=\"silent-title\">What did not answer "
      "<span class=\"count\">{}</span></h2>\n<ul>\n{}</ul>\n{}</section>\n",
      count, items, more);
}

}  // namespace

std::string html(std::string_view foreign) {
  std::string out;
  const Shown safe = shown(foreign);
  for (const char byte : safe.text()) {
    switch (byte) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        out += byte;
    }
  }
  return out;
}

std::string pageTitle(const PageSubject& subject) {
  const std::optional<std::string>& time = subject.status.roles()[Role::time];
  return html(nameOf(subject) + (time ? ", " + *time : ""));
}

std::string pageSummary(const PageSubject& subject) {
  return headerOf(subject) + changesOf(subject) + silentOf(subject);
}

}  // namespace tarn
