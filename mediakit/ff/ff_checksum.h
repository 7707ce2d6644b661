// The checksum of container files.
#pragma once

#include <string_view>

#include "basekit/cmn/cmn_types.h"

/// CRC-32 as in ISO 3309 and PNG: polynomial 0x04C11DB7, reflected, initial value and final
/// exclusive-or all ones. The text "123456789" gives 0xCBF43926.
[[nodiscard]] QLX_API std::uint32_t FF_Checksum(std::string_view bytes) noexcept;
