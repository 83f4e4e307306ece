#pragma once

// The allocator lives in the platform layer's module: exported while that module itself is built
// (VEXK_BUILD), imported by every other one.
#ifdef VEXK_BUILD
#define STL_PLATFORM_API __declspec(dllexport)
#else
#define STL_PLATFORM_API __declspec(dllimport)
#endif
