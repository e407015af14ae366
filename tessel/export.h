#pragma once

/// TESSEL_API marks what the shared library exports; everything else stays hidden in it.
/// Define TESSEL_STATIC when the library is linked statically.
#if defined(TESSEL_STATIC)
#define TESSEL_API
#elif defined(_MSC_VER) || defined(__MINGW32__)
#if defined(TESSEL_BUILDING)
#define TESSEL_API __declspec(dllexport)
#else
#define TESSEL_API __declspec(dllimport)
#endif
#else
#define TESSEL_API __attribute__((visibility("default")))
#endif
