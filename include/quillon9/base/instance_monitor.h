#pragma once

namespace Quillon9 {

/// Empty second base of concrete classes, without state or behaviour. Generated code names it too.
class CInstanceMonitor {
 public:
  /// Ignores its argument.
  explicit CInstanceMonitor(char const* /*className*/) {}
};

}  // namespace Quillon9
