// The input of a target that plays through a sequence of events: bytes are taken from its front as they are
// needed, and are 0 behind its end.
#pragma once

#include <cstdint>
#include <iterator>
#include <span>

class Script {
public:
    explicit Script(std::span<const unsigned char> bytes) : bytes_(bytes) {}

    bool IsAtEnd() const { return bytes_.empty(); }
    unsigned Peek() const { return IsAtEnd() ? 0 : bytes_.front(); }
    unsigned Byte() {
        const unsigned byte = Peek();
        bytes_ = bytes_.subspan(IsAtEnd() ? 0 : 1);
        return byte;
    }
    // Small, one at an edge, or any.
    std::int32_t Number() {
        constexpr std::int32_t kEdges[] = {-1,    1024,  1080,    1920,       2160,           3840,
                                           16384, 65535, 1 << 24, 0x7FFFFFFF, -0x7FFFFFFF - 1};
        constexpr unsigned kSmall = 240;
        const unsigned byte = Byte();
        if (byte < kSmall)
            return static_cast<std::int32_t>(byte);
        if (byte < kSmall + std::size(kEdges))
            return kEdges[byte - kSmall];
        std::uint32_t number = 0;
        for (int i = 0; i < 4; ++i)
            number = number << 8 | Byte();
        return static_cast<std::int32_t>(number);
    }
    // From 0 on, below `count`.
    std::size_t Choice(std::size_t count) { return Byte() % count; }

private:
    std::span<const unsigned char> bytes_;
};
