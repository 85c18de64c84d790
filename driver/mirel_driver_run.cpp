#include "driver/mirel_driver_run.h"

#include <memory>
#include <utility>

#include "common/mirel_common_console.h"
#include "common/mirel_common_memory.h"
#include "driver/mirel_driver_delivery.h"
#include "driver/mirel_driver_options.h"
#include "generator/mirel_generator_walk.h"
#include "json/mirel_json_parser.h"
#include "platform/services.h"
#include "platform/sockets.h"

namespace {

void setCustomer(CustomerCollector* customer, RunSettings* from) {
  customer->setCustomerInfo(std::move(from->name), std::move(from->company), std::move(from->email),
                            std::move(from->country), std::move(from->address), std::move(from->telephone));
}

/// The socket layer, which `readConfig` sets up and `writeResult` ends. This ends it where no result is
/// written.
struct SocketsInUse {
  bool inUse;
  ~SocketsInUse() {
    if (inUse) {
      sqloPdbCommFncTerm();
    }
  }
};

void tellIfLost(const MemoryWatch& memory) {
  if (memory.ranOut()) {
    memory.tell();
  }
}

/// From the template to the delivered result. What the settings tell of the customer and the database changes
/// hands: it is not lost on the way.
void collect(RunSettings* settings, const MemoryWatch& memory, CustomerCollector* customer,
             JsonParser* parser, Generator* generator) {
  setCustomer(customer, settings);
  std::unique_ptr<Value> root;  // goes after the socket layer has ended
  SocketsInUse sockets{settings->send};
  mirel_string config = readConfig(settings->send, settings->host, settings->port);
  if (memory.ranOut()) {
    return;
  }
  root.reset(parser->parse(std::move(config)));
  if (memory.ranOut()) {
    return;
  }
  generator->set(std::move(settings->database), customer);
  tellIfLost(memory);
  root->accept(*generator);
  hideWork();
  const mirel_string result = root->stringify(0);
  if (!memory.ranOut()) {
    sockets.inUse = false;
    writeResult(result, settings->send, settings->host, settings->port, true, settings->outfile);
  }
}

}  // namespace

int run(int argc, char** argv) {
  const MemoryWatch memory;
  ossOneTimeOnly();
  CustomerCollector customer;
  JsonParser parser;
  Generator generator;
  RunSettings settings;
  MemoryWatch::during([&] {
    const bool anyOption = parseOptions(argc, argv, &settings);
    if (anyOption && settings.support && !settings.lost()) {
      tellIfLost(memory);
      collect(&settings, memory, &customer, &parser, &generator);
    }
  });
  tellIfLost(memory);
  complainOfLostOutput();
  ossTerminate();
  return 0;
}
