#pragma once

// Integer types of the windows target. LLP64: long has 32 bits. These are the types that the
// exported names show; __int64 is another name of long long.

using i8 = signed char;
using u8 = unsigned char;
using i16 = short;
using u16 = unsigned short;
using i32 = long;
using u32 = unsigned long;
using i64 = long long;
using u64 = unsigned long long;
