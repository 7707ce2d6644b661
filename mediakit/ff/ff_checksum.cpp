#include "mediakit/ff/ff_checksum.h"

#include <array>

namespace {
// Eight tables take eight bytes a step; table k is the effect of a byte that k further bytes
// follow.
using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

constexpr Tables MakeTables() {
    Tables tables{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit)
            value = value & 1 ? 0xEDB88320u ^ (value >> 1) : value >> 1;
        tables[0][byte] = value;
    }
    for (std::size_t k = 1; k < tables.size(); ++k)
        for (std::size_t byte = 0; byte < 256; ++byte)
            tables[k][byte] = tables[0][tables[k - 1][byte] & 0xFF] ^ (tables[k - 1][byte] >> 8);
    return tables;
}

constexpr Tables kTables = MakeTables();

std::uint32_t Load(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}
} // namespace

std::uint32_t FF_Checksum(std::string_view bytes) noexcept {
    const unsigned char* at = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* const end = at + bytes.size();
    std::uint32_t sum = ~std::uint32_t{0};
    for (; end - at >= 8; at += 8) {
        const std::uint32_t low = Load(at) ^ sum;
        const std::uint32_t high = Load(at + 4);
        sum = kTables[7][low & 0xFF] ^ kTables[6][low >> 8 & 0xFF] ^ kTables[5][low >> 16 & 0xFF] ^
              kTables[4][low >> 24] ^ kTables[3][high & 0xFF] ^ kTables[2][high >> 8 & 0xFF] ^
              kTables[1][high >> 16 & 0xFF] ^ kTables[0][high >> 24];
    }
    for (; at != end; ++at)
        sum = kTables[0][(sum ^ *at) & 0xFF] ^ (sum >> 8);
    return ~sum;
}
