#pragma once

/// Marks what leaves the shared library. Everything else stays hidden (`-fvisibility=hidden`). Classes that
/// callers derive from, throw or catch carry it too, so that casts and catches work across the library's border.
#define QUILLON9_API __attribute__((visibility("default")))
