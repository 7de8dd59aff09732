#pragma once

/// The version of the library, following Semantic Versioning 2.0.0. The major number counts the changes that break
/// programs compiled before them, and is the number in the name of the shared library (libquillon9.so.1). Classes
/// written for the library, by a generator or by hand, assert it. The build reads the numbers from here.
#define QUILLON9_VERSION_MAJOR 1
#define QUILLON9_VERSION_MINOR 0
#define QUILLON9_VERSION_PATCH 0

/// All three numbers in one that grows with each release: 10203 is 1.2.3. For conditional compilation.
#define QUILLON9_VERSION (QUILLON9_VERSION_MAJOR * 10000 + QUILLON9_VERSION_MINOR * 100 + QUILLON9_VERSION_PATCH)
