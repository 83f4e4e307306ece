#pragma once

namespace ntoshost {

// Stops the program because a caller broke a rule of the kernel interface: writes "ntos: ", the
// text and a newline to standard error in one piece and aborts. `format` is that of the C library.
[[noreturn]] void violation(char const* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace ntoshost
