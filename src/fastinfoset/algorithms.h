#pragma once

#include <string>

namespace Quillon9 {

/// The steps of CFastInfosetBinaryData for octets that are elsewhere: in a writer's output or a reader's input.

/// Append the encoding of \p text to \p target.
/// \throws what CFastInfosetBinaryData::SetAsEncodedString() throws; \p target is unchanged then.
void AppendEncoded(unsigned long algorithm, char const* text, std::string& target);

/// Return the text that \p length octets represent.
/// \throws what CFastInfosetBinaryData::GetAsString() throws.
std::string DecodedText(unsigned long algorithm, unsigned char const* data, unsigned long length);

}  // namespace Quillon9
