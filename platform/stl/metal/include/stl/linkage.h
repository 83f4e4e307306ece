#pragma once

// One image holds everything on metal: the allocator needs no import or export mark.
#define STL_PLATFORM_API
