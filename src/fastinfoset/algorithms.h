#pragma once

#include <string>

namespace Quillon9 {

/// The steps of CFastInfosetBinaryData for callers that have the octets elsewhere: a writer's output, a reader's input.

/// Put the octets that stand for \p text behind what \p target holds.
/// \throws what CFastInfosetBinaryData::SetAsEncodedString() throws; \p target is unchanged then.
void AppendEncoded(unsigned long algorithm, char const* text, std::string& target);

/// The text of \p length octets.
/// \throws what CFastInfosetBinaryData::GetAsString() throws.
std::string DecodedText(unsigned long algorithm, unsigned char const* data, unsigned long length);

}  // namespace Quillon9
