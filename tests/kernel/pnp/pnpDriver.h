#pragma once

#include "wine/tEnumerator.h"

// The one of the driver; open while the tests run.
tEnumerator& pnpEnumerator();
