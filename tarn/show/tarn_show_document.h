#pragma once
/// A document, or a part of it, for eyes: sections of titled values, then what is longer than a line.

#include <string>

#include "tarn/document/tarn_document_tree.h"
#include "tarn/facts/tarn_facts_status.h"
#include "tarn/show/tarn_show_lines.h"

namespace tarn {

class DocumentView {
 public:
  /// Nothing is owned.
  DocumentView(const Tree& tree, const Facts& facts, Lines& lines)
      : m_tree(tree), m_facts(facts), m_lines(lines) {}

  /// The members of the root: a section for each that holds others.
  void sections() { contents(m_tree.root(), "", 0); }
  /// One member whole.
  void member(const Node& node, const std::string& pointer);
  /// What did not answer, by reason.
  void silent(const StatusSink& status);

 private:
  /// A value that is shown on one line behind its title.
  struct Single {
    Shown title, value;
    double part = -1;   ///< of the whole that its fact names; -1 when there is none
    std::string place;  ///< its pointer
    std::size_t bytes;  ///< of the whole text
  };

  bool isSingle(const Node& node) const;
  Shown titleOf(const Node& node, const std::string& pointer) const;
  Shown titleOf(const Node& element, const Fact& array) const;
  Single singleOf(const Node& node, const std::string& pointer) const;
  /// The lines of a value behind its title, whose column is that wide; a long one is folded, and cut when it
  /// goes on and on.
  void lay(const Single& single, std::size_t titles, std::size_t values, std::size_t width,
           std::vector<Shown>& lines);

  void singles(const Node& container, const std::string& pointer, std::size_t indent);
  void blocks(const Node& container, const std::string& pointer, std::size_t indent);
  void block(const Node& node, const std::string& pointer, std::size_t indent);
  void section(const Node& node, const std::string& pointer, std::size_t indent);
  void contents(const Node& node, const std::string& pointer, std::size_t indent);
  void elements(const Node& array, const std::string& pointer, std::size_t indent);
  void listing(std::string_view text, std::size_t indent);

  const Tree& m_tree;
  const Facts& m_facts;
  Lines& m_lines;
  std::size_t m_depth = 0;
};

}  // namespace tarn
