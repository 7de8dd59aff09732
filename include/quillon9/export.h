#pragma once

/// Marks the symbols that the shared library exports. Everything else stays hidden (`-fvisibility=hidden`). Classes
/// that callers derive from, throw or catch carry it too, so that casts and catches work across the boundary of the
/// library.
#define QUILLON9_API __attribute__((visibility("default")))
