#pragma once

#include <string>

namespace vexa::formats {

/// Bytes in base64 (RFC 4648, with padding).
std::string base64Of(const std::string& bytes);

}  // namespace vexa::formats
