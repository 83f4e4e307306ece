#include "goldenParcel.h"

#include "tParcel.h"

bool fillGoldenParcel(tParcel& parcel) {
  constexpr char kText[] = {'r', '\0', 'k'};
  constexpr wchar_t kWideText[] = {0x20AC, 0xD83D};
  parcel.character = '\xE9';
  parcel.unsignedNumber = 0xDEADBEEF;
  parcel.wideUnsignedNumber = 0x0123456789ABCDEF;
  return parcel.text.assign(kText, 3) && parcel.wideText.assign(kWideText, 2) &&
         parcel.pack() != nullptr;
}
