#pragma once
/// Evaluates a template as a run does, member by member, and says which one is at work.
///
/// The core's interpreter evaluates every member and every `$foreach` key; this walk only brings them to it,
/// one by one and in its order, so that a repetition costs no copy of what is repeated, and puts the result
/// together.

#include <memory>
#include <string>

#include "generator/mirel_generator_walk.h"
#include "tarn/document/tarn_document_names.h"
#include "tarn/template/tarn_template_source.h"

namespace tarn {

class WalkSink {
 public:
  virtual ~WalkSink() = default;
  /// Whether the result is wanted.
  virtual bool keepsResult() const { return false; }
  /// Whether to go on with the next member.
  virtual bool goesOn() const { return true; }

  /// A member whose text may be a command, or whose key may repeat it, comes to its turn. `text` is empty for
  /// a container.
  virtual void begins(const mirel_string& text) = 0;
  /// It is done. `pair` has the name and the answer of the result; the pointer leads there.
  virtual void ends(const std::string& pointer, const KeyValuePair& pair) = 0;
};

class Walk {
 public:
  /// The source has no syntax error.
  Walk(const TemplateSource& source, Generator& generator, WalkSink& sink)
      : m_source(source), m_generator(generator), m_sink(sink) {}

  /// The result, owned by the caller; null when it is not wanted.
  Value* run();

 private:
  using Node = TemplateNode;

  Value* container(const Node& node);
  Value* object(const Node& node);
  Value* array(const Node& node);
  Value* element(const Node& node);
  std::unique_ptr<KeyValuePair> member(const Node& node);
  void evaluate(KeyValuePair& pair, const Node& node);
  Value* repeated(KeyValuePair& pair, const Node& node);
  void pushName(const mirel_string& name);

  const TemplateSource& m_source;
  Generator& m_generator;
  WalkSink& m_sink;
  std::string m_pointer;  ///< of the member at hand in the result
  Names m_names;          ///< of the objects that are open
};

}  // namespace tarn
