#pragma once

#include "collectors/mirel_collectors_items.h"
#include "common/mirel_string.h"

/// The customer's contact facts, as the operator gave them on the command line.
class CustomerCollector {
 public:
  /// Mind the order. A fact that was not given is passed as the empty text.
  void setCustomerInfo(mirel_string name, mirel_string company, mirel_string email, mirel_string country,
                       mirel_string address, mirel_string telephone);

  /// Nothing to gather; the collectors are asked alike.
  void collect() {}

  /// "name", "company", "address", "telephone", "email", "country", "ip". Before they are set, and for "ip"
  /// and any other item, "null".
  mirel_string collect_customer(const mirel_string& item) const;
  static ItemWords customerItems();

 private:
  struct Items;

  static mirel_string unknown() { return mirel_string::within("null", 4); }

  mirel_string m_name = unknown();
  mirel_string m_company = unknown();
  mirel_string m_address = unknown();
  mirel_string m_telephone = unknown();
  mirel_string m_email = unknown();
  mirel_string m_country = unknown();
  mirel_string m_ip = unknown();
};
