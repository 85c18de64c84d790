#include "collectors/mirel_collectors_customer.h"

#include <utility>

void CustomerCollector::setCustomerInfo(mirel_string name, mirel_string company, mirel_string email,
                                        mirel_string country, mirel_string address, mirel_string telephone) {
  m_name = std::move(name);
  m_company = std::move(company);
  m_email = std::move(email);
  m_country = std::move(country);
  m_address = std::move(address);
  m_telephone = std::move(telephone);
}

struct CustomerCollector::Items {
  using From = const CustomerCollector&;
  static constexpr Item<CustomerCollector> all[] = {
      {"name", [](From from) { return from.m_name; }},
      {"company", [](From from) { return from.m_company; }},
      {"address", [](From from) { return from.m_address; }},
      {"telephone", [](From from) { return from.m_telephone; }},
      {"email", [](From from) { return from.m_email; }},
      {"country", [](From from) { return from.m_country; }},
      {"ip", [](From from) { return from.m_ip; }},
  };
};

mirel_string CustomerCollector::collect_customer(const mirel_string& item) const {
  return answerOf(Items::all, *this, item, "null");
}

ItemWords CustomerCollector::customerItems() {
  return wordsOf(Items::all);
}
