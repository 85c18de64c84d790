#include "driver/mirel_driver_run.h"

#include "driver/mirel_driver_delivery.h"
#include "driver/mirel_driver_options.h"
#include "generator/mirel_generator_walk.h"
#include "json/mirel_json_parser.h"
#include "platform/progress.h"
#include "platform/services.h"

namespace {

void setCustomer(CustomerCollector* customer, const RunSettings& from) {
  customer->setCustomerInfo(from.name, from.company, from.email, from.country, from.address, from.telephone);
}

/// From the template to the delivered result.
void collect(const RunSettings& settings, CustomerCollector* customer, JsonParser* parser,
             Generator* generator) {
  setCustomer(customer, settings);
  Value* root = parser->parse(readConfig(settings.send, settings.host, settings.port));
  generator->set(settings.database, customer);
  root->accept(*generator);
  progressHide();
  const mirel_string result = root->stringify(0);
  writeResult(result, settings.send, settings.host, settings.port, true, settings.outfile);
  delete root;
}

}  // namespace

int run(int argc, char** argv) {
  ossOneTimeOnly();
  CustomerCollector customer;
  JsonParser parser;
  Generator generator;
  RunSettings settings;
  const bool anyOption = parseOptions(argc, argv, &settings);
  if (anyOption && settings.support) {
    collect(settings, &customer, &parser, &generator);
  }
  ossTerminate();
  return 0;
}
