#pragma once
/// The seam between the core and the machine, with somebody looking on.
///
/// The linker leads the core's calls of the platform, and of popen(3), to the functions of this layer
/// (tarn/CMakeLists.txt). They tell a witness what passes and ask the machine, or answer in its place.
/// Without a witness they only pass calls on.

#include <string>
#include <string_view>

namespace tarn {

class Witness {
 public:
  virtual ~Witness() = default;

  /// Whether the machine is left alone. Then everything answers at once as if it had worked and found
  /// nothing: a connection stands, a query has no rows; but files cannot be opened and commands not be
  /// started.
  virtual bool pretends() const { return false; }
  /// Whether nobody waits for the output of the command any more.
  virtual bool givesUp() const { return false; }

  // Before the machine is asked.
  virtual void connecting(const char* /*dataSource*/) {}
  virtual void sending(const char* /*statement*/) {}
  virtual void starting(const char* /*command*/) {}
  virtual void reading(const char* /*path*/) {}
  virtual void readingConfiguration() {}

  // What it answered.
  virtual void connected(bool /*stands*/) {}
  /// A command ended: its status as wait(2) tells it, and what it wrote to standard error.
  virtual void ended(int /*status*/, std::string_view /*error*/) {}
  /// A file could not be opened: the system's error number.
  virtual void unreadable(int /*code*/) {}
  virtual void diagnostic(const char* /*message*/) {}
  virtual void column(const char* /*name*/) {}
  virtual void row() {}
  /// A value of the row as the core gets it: its first bytes, and whether there are more. True when the
  /// witness wants to hear them.
  virtual bool value(unsigned /*column*/, std::string_view /*text*/, bool /*isNull*/, bool /*isCut*/) {
    return false;
  }
  /// The bytes behind those, as many as make sense to show.
  virtual void rest(std::string_view /*text*/) {}
};

/// Lets a witness look on for its own lifetime.
class Watch {
 public:
  explicit Watch(Witness& witness);
  ~Watch();
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
};

}  // namespace tarn
