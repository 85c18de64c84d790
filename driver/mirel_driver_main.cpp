#include "driver/mirel_driver_run.h"

int main(int argc, char** argv) {
  return run(argc, argv);
}
