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

mirel_string CustomerCollector::collect_customer(const mirel_string& item) const {
  static constexpr struct {
    const char* word;
    mirel_string CustomerCollector::*fact;
  } kItems[] = {
      {"name", &CustomerCollector::m_name},       {"company", &CustomerCollector::m_company},
      {"address", &CustomerCollector::m_address}, {"telephone", &CustomerCollector::m_telephone},
      {"email", &CustomerCollector::m_email},     {"country", &CustomerCollector::m_country},
      {"ip", &CustomerCollector::m_ip},
  };
  for (const auto& row : kItems) {
    if (item == row.word) {
      return this->*row.fact;
    }
  }
  return "null";
}
