#include "common/mirel_common_console.h"

#include <iostream>

#include "platform/progress.h"

void showWork(const char* work) {
  if (progressShow != nullptr) {
    progressShow(work);
  }
}

void hideWork() {
  if (progressHide != nullptr) {
    progressHide();
  }
}

void complain(const char* line) {
  hideWork();
  std::cerr << line << std::endl;
}

void complainOfLostOutput() {
  if (!std::cout.flush()) {
    complain("failed to write to standard output");
  }
}
