#include "tarn/template/tarn_template_plan.h"

#include <vector>

#include "common/mirel_common_memory.h"
#include "tarn/template/tarn_template_seam.h"
#include "tarn/template/tarn_template_walk.h"

namespace tarn {

namespace {

/// Keeps the steps of a member until its place in the result is known.
class Planner final : public Witness, public WalkSink {
 public:
  explicit Planner(const std::function<void(const Step&)>& tell) : m_tell(tell) {}

  bool pretends() const override { return true; }
  void connecting(const char* dataSource) override { add("connect", dataSource, true); }
  void sending(const char* statement) override { add("sql", statement, false); }
  void starting(const char* command) override { add("execute", command, !(word(0) == "execute")); }
  void reading(const char*) override { add("read", word(2).c_str(), false); }
  void readingConfiguration() override { add("read", "SQLDBCONF", true); }

  bool goesOn() const override { return !m_memory.ranOut(); }
  void begins(const mirel_string& text) override { m_text = text; }
  void ends(const std::string& pointer, const KeyValuePair&) override { tell(pointer); }

  void tell(const std::string& pointer) {
    for (Step& step : m_steps) {
      step.pointer = pointer;
      m_tell(step);
    }
    m_steps.clear();
  }

 private:
  void add(const char* kind, const char* text, bool implied) { m_steps.push_back({kind, text, "", implied}); }

  /// Of the command at hand.
  mirel_string word(std::size_t index) const {
    const std::vector<mirel_string> words = Generator::split_args(m_text, index + 1);
    return index < words.size() ? words[index] : mirel_string("");
  }

  const std::function<void(const Step&)>& m_tell;
  const MemoryWatch m_memory;
  mirel_string m_text = "";
  std::vector<Step> m_steps;
};

}  // namespace

bool plan(const TemplateSource& source, const std::string& database,
          const std::function<void(const Step&)>& tell) {
  Planner planner(tell);
  const Watch watch(planner);
  CustomerCollector customer;
  Generator generator;
  generator.set(database.c_str(), &customer);
  planner.tell("");
  Walk(source, generator, planner).run();
  return planner.goesOn();
}

}  // namespace tarn
