#pragma once
/// The 32-bit handles of the SQL call-level interface and the records behind them.
///
/// A handle tells the type of its record and a serial number. The number picks the slot in a fixed table
/// and is compared with the one kept there, so looking up is one step and a handle that was freed, is of
/// another type or was never given out finds nothing. 4,096 can be alive; a number comes back after 2^29.
///
/// For one thread, as the interface is used.

#include <array>
#include <cstddef>

#include "platform/sqlcli.h"

namespace host {

class HandleTable {
 public:
  /// A new handle for `record`, whose type is its `kType`; SQL_NULL_HANDLE when the table is full.
  template <class Record>
  SQLHANDLE add(Record* record) {
    return addSlot(Record::kType, record);
  }

  /// Forgets a handle that is alive; the record is its maker's to free.
  void remove(SQLHANDLE handle) { slotOf(handle) = Slot{}; }

  /// The record of a handle; null when there is no such handle of this type.
  template <class Record>
  Record* find(SQLHANDLE handle) {
    const Slot& slot = slotOf(handle);
    return slot.handle == handle && typeOf(handle) == Record::kType ? static_cast<Record*>(slot.record)
                                                                    : nullptr;
  }

  /// Calls `action` with each record of a type and its handle, which it may remove.
  template <class Record, class Action>
  void forEach(Action action) {
    for (Slot& slot : m_slots) {
      if (slot.record != nullptr && typeOf(slot.handle) == Record::kType) {
        action(*static_cast<Record*>(slot.record), slot.handle);
      }
    }
  }

 private:
  struct Slot {
    SQLHANDLE handle = SQL_NULL_HANDLE;
    void* record = nullptr;
  };

  static constexpr std::size_t kSlots = 4096;
  static constexpr unsigned int kTypeBits = 2;
  static constexpr unsigned int kSerialMask = (1U << 29) - 1;

  static short typeOf(SQLHANDLE handle) {
    return static_cast<short>(static_cast<unsigned int>(handle) & ((1U << kTypeBits) - 1));
  }
  Slot& slotOf(SQLHANDLE handle) {
    return m_slots[(static_cast<unsigned int>(handle) >> kTypeBits) % kSlots];
  }
  SQLHANDLE addSlot(short type, void* record);

  std::array<Slot, kSlots> m_slots{};
  unsigned int m_serial = 0;
};

}  // namespace host
