#pragma once

// Lets a pointer that a module calls through point to something else, such as the place of an
// import, though the page that it is on is for reading only. False when the kernel refuses, or when
// `place` is null.
bool redirect(void** place, void* function);
