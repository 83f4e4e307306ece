#pragma once

// The two texts of the family. Wide text is UTF-16 on every target.

#include "stl/basic_string.h"

namespace _STL {

using string = basic_string<char>;
using wstring = basic_string<wchar_t>;

}  // namespace _STL
