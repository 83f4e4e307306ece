#pragma once

// Placement new. Host programs have the freestanding header that declares it.
#include <new>
