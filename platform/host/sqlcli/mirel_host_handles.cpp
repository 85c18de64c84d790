#include "platform/host/sqlcli/mirel_host_handles.h"

namespace host {

SQLHANDLE HandleTable::addSlot(short type, void* record) {
  for (std::size_t tried = 0; tried < kSlots; ++tried) {
    m_serial = (m_serial + 1) & kSerialMask;
    const auto handle = static_cast<SQLHANDLE>((m_serial << kTypeBits) | static_cast<unsigned int>(type));
    Slot& slot = slotOf(handle);
    if (slot.record == nullptr) {
      slot = {handle, record};
      return handle;
    }
  }
  return SQL_NULL_HANDLE;
}

}  // namespace host
