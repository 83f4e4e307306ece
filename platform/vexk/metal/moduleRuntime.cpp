// What the compiler expects of a language runtime.

// A pure virtual operation was called: an object is used before or after its life. There is nobody
// to tell, so the machine stops at the spot.
extern "C" void __cxa_pure_virtual() {
  __builtin_trap();
}
