#pragma once

namespace Quillon9 {

/// How reads of text use the FastReader.
enum class FastReaderMode {
  kOn,
  kOff,
  kCompared,  ///< the parser reads whatever it has read once more, and the process ends if the trees differ
};

/// The mode of this build, of CLimits::SetUseFastReader(), and of the environment variable QUILLON9_FAST_READER, which
/// may be "off" or "compare". It is read once per process.
FastReaderMode CurrentFastReaderMode();

}  // namespace Quillon9
