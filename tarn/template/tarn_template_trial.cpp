#include "tarn/template/tarn_template_trial.h"

#include <fmt/format.h>
#include <sys/wait.h>

#include <chrono>
#include <cstring>
#include <iostream>
#include <sstream>

#include "common/mirel_common_console.h"
#include "common/mirel_common_memory.h"
#include "tarn/template/tarn_template_check.h"
#include "tarn/template/tarn_template_interrupt.h"
#include "tarn/template/tarn_template_notes.h"
#include "tarn/template/tarn_template_seam.h"
#include "tarn/template/tarn_template_walk.h"

namespace tarn {

namespace {

using Clock = std::chrono::steady_clock;

/// What the core prints is at hand already: the diagnostics of a step.
class Silence {
 public:
  Silence() : m_before(std::cerr.rdbuf(m_said.rdbuf())) {}
  ~Silence() { std::cerr.rdbuf(m_before); }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  std::ostringstream m_said;
  std::streambuf* m_before;
};

class Recorder final : public Witness, public WalkSink {
 public:
  Recorder(const TemplateSource& source, const std::function<void(const Attempt&)>& tell)
      : m_source(source), m_tell(tell) {}

  bool givesUp() const override { return Interrupt::count() != m_interrupts; }
  void connected(bool stands) override { m_isConnected = stands; }
  void sending(const char*) override { m_rows.query(); }
  void starting(const char*) override { m_attempt.status = 127; }
  void ended(int status, std::string_view error) override {
    m_attempt.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    m_attempt.error = error;
  }
  void unreadable(int code) override { note(std::string("the file cannot be read: ") + strerror(code)); }
  void diagnostic(const char* message) override { m_attempt.diagnostics.emplace_back(message); }
  void column(const char* name) override { m_rows.column(name); }
  void row() override { m_rows.row(); }
  bool value(unsigned column, std::string_view text, bool isNull, bool isCut) override {
    return m_rows.value(column, text, isNull, isCut);
  }
  void rest(std::string_view text) override { m_rows.rest(text); }

  bool keepsResult() const override { return true; }
  void begins(const mirel_string& text) override {
    m_attempt = {};
    m_attempt.command = text.c_str();
    m_rows = {};
    m_interrupts = Interrupt::count();
    m_began = Clock::now();
  }
  void ends(const std::string& pointer, const KeyValuePair& pair) override {
    const Words words({m_attempt.command, 0});
    if (!isKnown(commandWords(), words[0].text) || words.count + (words.blankBehind ? 1 : 0) < 2) {
      return;
    }
    noteCommand(words);
    finish(pointer, pair.getValue());
  }

  void connect(Generator& generator, const TrialSettings& settings) {
    begins("");
    m_attempt.command = "connect " + settings.database;
    generator.set(settings.database.c_str(), settings.customer);
    if (m_isConnected || !m_attempt.diagnostics.empty()) {
      const PrimitiveValue connected("connected");
      finish("", m_isConnected ? &connected : nullptr);
    }
  }

 private:
  void note(std::string text) { m_attempt.notes.push_back(std::move(text)); }

  /// What tarn check would say of the command, and what its rows were.
  void noteCommand(const Words& words) {
    Findings findings;
    for (const Rule& rule : m_rules) {
      if (rule.look == Look::command) {
        findings.begin(rule);
        rule.find({m_source, nullptr, {m_attempt.command, 0}, &words}, findings);
      }
    }
    for (const Finding& finding : findings.all()) {
      note(finding.text + "; " + finding.hint);
    }
    const bool isSql = words[0].text == "sql";
    if (isSql && !m_isConnected) {
      note("there is no connection");
    }
    const bool isValue = isSql && words[1].text == "value";
    const mirel_string column = mirel_string(isValue ? words[2].text.c_str() : "").upper();
    // What a query that failed has is not worth a word.
    if (m_attempt.diagnostics.empty()) {
      for (std::string& text : m_rows.notes(words[1].text, column.c_str())) {
        note(std::move(text));
      }
    }
    if (givesUp()) {
      note("ended by an interrupt");
    }
  }

  void finish(const std::string& pointer, const Value* answer) {
    Interrupt::settle();
    m_attempt.pointer = pointer;
    m_attempt.answer = answer;
    m_attempt.seconds = std::chrono::duration<double>(Clock::now() - m_began).count();
    hideWork();
    m_tell(m_attempt);
  }

  const TemplateSource& m_source;
  const std::function<void(const Attempt&)>& m_tell;
  const std::vector<Rule> m_rules = commandRules();
  Attempt m_attempt;
  RowNotes m_rows;
  Clock::time_point m_began;
  int m_interrupts = 0;
  bool m_isConnected = false;
};

}  // namespace

std::optional<std::string> tryTemplate(const TemplateSource& source, const TrialSettings& settings,
                                       const std::function<void(const Attempt&)>& tell) {
  const MemoryWatch memory;
  const Silence silence;
  const Interrupt interrupt;
  Recorder recorder(source, tell);
  const Watch watch(recorder);
  Generator generator;
  recorder.connect(generator, settings);
  const std::unique_ptr<Value> root(Walk(source, generator, recorder).run());
  hideWork();
  const mirel_string text = root->stringify(0);
  return memory.ranOut() ? std::nullopt : std::optional<std::string>(text.c_str());
}

}  // namespace tarn
