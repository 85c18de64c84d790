#include "tarn/fleet/tarn_fleet_question.h"

#include "tarn/fleet/tarn_fleet_order.h"
#include "tarn/fleet/tarn_fleet_pattern.h"

namespace tarn {

namespace {

using Values = std::vector<std::pair<std::string, std::string>>;

Values valuesOf(const std::string& pointer) {
  PlacePattern pattern = placePattern(pointer);
  return {{"pointer", std::move(pattern.pointer)},
          {"glob", std::move(pattern.glob)},
          {"like", std::move(pattern.like)}};
}

const char* nameOf(FleetCondition::Test test) {
  constexpr const char* kNames[] = {"where_equals", "where_contains", "where_greater", "where_less"};
  return kNames[static_cast<std::size_t>(test)];
}

}  // namespace

FleetQuestion hostsQuestion() {
  return {"hosts"};
}

FleetQuestion problemsQuestion() {
  return {"problems"};
}

FleetQuestion whereQuestion(const FleetCondition& condition) {
  FleetQuestion question = {nameOf(condition.test), valuesOf(condition.pointer)};
  question.values.emplace_back("value", condition.value);
  if (condition.test == FleetCondition::Test::greater || condition.test == FleetCondition::Test::less) {
    question.values.emplace_back("number", numericValue(condition.value) ? condition.value : "");
    question.values.emplace_back("sorted", naturalKey(condition.value));
  }
  return question;
}

FleetQuestion spreadQuestion(const std::string& pointer) {
  return {"spread", valuesOf(pointer)};
}

FleetQuestion historyQuestion(const std::string& host, const std::string& pointer) {
  FleetQuestion question = {"history", valuesOf(pointer.empty() ? "*" : pointer)};
  question.values.emplace_back("host", host);
  return question;
}

FleetQuestion driftQuestion(const std::string& since) {
  return {"drift", {{"since", since}}};
}

FleetQuestion documentsQuestion(const std::string& host, const std::string& until) {
  return {"documents", {{"host", host}, {"until", until}}};
}

}  // namespace tarn
