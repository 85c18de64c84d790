#pragma once

#include <string_view>
#include <vector>

#include "collectors/mirel_collectors_customer.h"
#include "collectors/mirel_collectors_instance.h"
#include "collectors/mirel_collectors_platform.h"
#include "common/mirel_string.h"
#include "db/mirel_db_connection.h"
#include "json/mirel_json_value.h"

/// The template interpreter: walks a parsed template in place, depth first and in document order, and puts
/// results where commands stood.
///
///     Generator generator;
///     generator.set(database, &customer);   // connects, takes the facts
///     root->accept(generator);              // evaluates
///
/// A string is a command when it is the value of an object's member, has at least two words, and the first
/// is "native", "execute" or "sql". Every other string stays as it is. A key "$foreach VARIABLE [NAME]"
/// becomes NAME, with an array of evaluated copies of the member's value: one copy for "db" when a database
/// is connected, one for "table", none otherwise.
///
/// Where memory runs out for a member, that member becomes the empty text (a query's: no value), standard
/// error says so in a line, and the walk goes on. The members of a copy are members of their own. A key that
/// there is no memory for is not told: then the tree is not to be used, as a `MemoryWatch` shows.
class Generator final : public JsonVisitor {
 public:
  /// Connects to the database when its name has more than one character, then lets all collectors take
  /// their facts. The customer collector is not owned. Without memory it goes on with what it has.
  void set(mirel_string database, CustomerCollector* customer);

  void visit(Value* value) override;
  void visit(PrimitiveValue* value) override;
  void visit(KeyValuePair* pair) override;
  void visit(ObjectValue* object) override;
  void visit(ArrayValue* array) override;

  /// An evaluated copy of the pair's value, owned by the caller; the pair is left as it was.
  Value* cloneAndRun(const KeyValuePair* pair);

  /// Cuts a text into words. One blank (0x20) separates, blanks before a word are skipped, nothing is quoted.
  /// At most `limit` cuts are made; the last word is the uncut rest, possibly empty.
  static std::vector<mirel_string> split_args(const mirel_string& text, unsigned long limit);

  /// Evaluates a string that is a command: changes the primitive's text or gives the pair a new value.
  void parseAndExecute(PrimitiveValue* primitive, KeyValuePair* pair);

  /// The commands, each with what follows its first word.
  void native(const mirel_string& rest, PrimitiveValue* primitive);
  void execute(const mirel_string& command, PrimitiveValue* primitive);
  /// "array QUERY", "value COLUMN QUERY" or "one QUERY". The result is owned by the caller; null when the
  /// command is not one of these or a value has no answer.
  Value* sql(const mirel_string& rest);

  /// The words that a command begins with, the kinds of `sql`, and what `$foreach` repeats for.
  static ItemWords commandWords();
  static ItemWords sqlKinds();
  static ItemWords foreachVariables();

 private:
  struct Command;
  static const Command s_commands[];
  static const Command* commandOf(const char* text);

  struct Variable;
  static const Variable s_variables[];

  /// What follows the first word of a text of several words, if it is this one; else null.
  static const char* behind(const char* text, const char* word);
  /// Evaluates the pair's text, if it is a command.
  void evaluate(KeyValuePair* pair, const char* text);
  void expand(KeyValuePair* pair, std::string_view variable, std::string_view outputKey);
  Value* runForDatabase(const KeyValuePair* pair);

  mirel_string m_databaseName = mirel_string::within("", 0);  ///< empty unless connected
  InstanceCollector m_instance;
  PlatformCollector m_platform;
  CustomerCollector* m_customer = nullptr;
  DBConnection m_connection;
};
