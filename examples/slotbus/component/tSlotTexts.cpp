#include "slotbus/component/tSlotTexts.h"

#include "slotbus/component/component.h"

namespace nSLOTBUS100 {

tChildDescription tSlotTexts::describe(tDevice const& device, iDeviceHandler& handler) {
  used = 0;
  u32 const count = splitIds(device.hardwareIds);
  OXDIAG_ENSURE_MESSAGE(count > 0, "a device has a hardware id");
  return {ids, count, widen(device.description), device.instance, false, device.slot, &handler};
}

u32 tSlotTexts::splitIds(tTextSpan rest) {
  u32 count = 0;
  while (!rest.isEmpty()) {
    OXDIAG_CHECK_MESSAGE(count < kMaxIdCount, "the reader lets no more ids through");
    ids[count++] = widen(tDevice::takeHardwareId(rest));
  }
  return count;
}

// The text of a rack is ASCII.
wchar_t const* tSlotTexts::widen(tTextSpan text) {
  wchar_t* const first = characters + used;
  used += static_cast<u32>(text.getLength()) + 1;
  OXDIAG_CHECK_MESSAGE(used <= sizeof(characters) / sizeof(wchar_t),
                       "the reader lets no longer texts through");
  for (size_t index = 0; index < text.getLength(); ++index)
    first[index] = static_cast<wchar_t>(text[index]);
  first[text.getLength()] = L'\0';
  return first;
}

}  // namespace nSLOTBUS100
