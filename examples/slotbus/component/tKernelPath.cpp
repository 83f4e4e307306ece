#include "slotbus/component/tKernelPath.h"

namespace nSLOTBUS100 {

tKernelPath::tKernelPath(wchar_t const* first, wchar_t const* second) {
  bool const hasDriveLetter = first[0] != L'\0' && first[1] == L':';
  if (hasDriveLetter) append(L"\\??\\");
  append(first);
  append(second);
  text[length] = L'\0';
}

void tKernelPath::append(wchar_t const* more) {
  while (*more != L'\0' && length < kMaxLength) {
    text[length] = *more;
    ++length;
    ++more;
  }
}

}  // namespace nSLOTBUS100
