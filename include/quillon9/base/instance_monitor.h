#pragma once

namespace Quillon9 {

/// Second base of concrete classes, which generated code names too. It holds nothing and does nothing.
class CInstanceMonitor {
 public:
  /// \p className is not kept.
  explicit CInstanceMonitor(char const* /*className*/) {}
};

}  // namespace Quillon9
