#pragma once

// Integer types of the LP64 targets (host and metal): long has 64 bits, so the 32-bit types are
// int.

using i8 = signed char;
using u8 = unsigned char;
using i16 = short;
using u16 = unsigned short;
using i32 = int;
using u32 = unsigned int;
using i64 = long long;
using u64 = unsigned long long;
