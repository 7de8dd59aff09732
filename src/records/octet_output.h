#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "quillon9/values/binary_data.h"
#include "quillon9/xmlio/compression.h"

namespace Quillon9 {

/// Takes octets in order, any number of them. What is written to a file or to memory takes effect with Finish().
class OctetOutput {
 public:
  virtual ~OctetOutput();
  /// \throws CQnException "Failed to write data to the file [%s]"; what a function of the caller throws.
  virtual void Write(std::string_view octets) = 0;
  /// Pass on what is held back.
  /// \throws as Write().
  virtual void Flush();
  /// All octets have been written.
  /// \throws as Write().
  virtual void Finish();
};

/// The file \p path, which appears or changes only in Finish().
/// \throws CQnException "Failed to write data to the file [%s]".
std::unique_ptr<OctetOutput> OutputToFile(std::string const& path);
/// The end of the file \p path, which is created where it is missing.
/// \throws as OutputToFile().
std::unique_ptr<OctetOutput> OutputToEndOfFile(std::string const& path);
/// An open file, which stays open.
std::unique_ptr<OctetOutput> OutputToDescriptor(int descriptor);
/// Memory of the caller, which is borrowed and gets all octets in Finish().
///@{
std::unique_ptr<OctetOutput> OutputToMemory(std::string& target);
std::unique_ptr<OctetOutput> OutputToMemory(CBinaryData& target);
///@}
/// Calls \p function with each piece.
std::unique_ptr<OctetOutput> OutputToFunction(std::function<void(char const*, std::size_t)> function);

/// Compresses the octets on their way to \p output, at the fastest level as CQnZip does; \p output itself where \p type
/// is none that compresses.
std::unique_ptr<OctetOutput> Compressed(std::unique_ptr<OctetOutput> output, CompressionType type);

}  // namespace Quillon9
