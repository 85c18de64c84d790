/// A run whose template asks for native facts only, from process start to the printed document. What it
/// costs is the start of the program and the files that it reads; bench/run times whole processes. With an
/// argument the peak of its memory follows on standard error, in bytes.

#include <iostream>
#include <memory>

#include "bench/mirel_bench_peak.h"
#include "generator/mirel_generator_walk.h"
#include "json/mirel_json_parser.h"
#include "platform/services.h"

int main(int count, char**) {
  ossOneTimeOnly();
  const std::unique_ptr<Value> root(JsonParser().parse(R"({
    "numberOfDatabases": "native instance numdbs",
    "osName": "native os name", "osFullName": "native os fullname",
    "cpuTotal": "native cpu total", "cpuCoresPerSocket": "native cpu cores", "cpuSpeed": "native cpu speed",
    "physMemTotal": "native pmemory total", "physMemFree": "native pmemory free",
    "virtMemTotal": "native vmemory total", "swapMemTotal": "native swap total",
    "diskInfoTotal": "native disk total", "diskInfoFree": "native disk free"})"));
  CustomerCollector customer;
  Generator generator;
  generator.set("", &customer);
  root->accept(generator);
  std::cout << *root << std::endl;
  ossTerminate();
  if (count > 1) {
    std::cerr << peak() << std::endl;
  }
  return 0;
}
