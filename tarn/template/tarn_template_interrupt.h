#pragma once
/// Ctrl-C while a template is tried: the first one ends the command at work, the second one the program.

namespace tarn {

/// Takes interrupts for its own lifetime. One at a time.
class Interrupt {
 public:
  Interrupt();
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

  /// How many came. The processes that were started here are killed for each.
  static int count();
  /// Waits until that is done, so that it does not hit what is started next.
  static void settle();
};

}  // namespace tarn
