// Memory that the compositor reads and writes too.
#pragma once

#include <wayland-client.h>

#include <cstddef>
#include <cstdint>

namespace wayland {

class SharedMemory {
public:
    explicit SharedMemory(std::size_t size);
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    unsigned char* Bytes() const { return bytes_; } // null: there is no memory
    // A picture from that byte on; it goes on when the memory is gone here. The memory is there, and large
    // enough for it.
    wl_buffer* NewBuffer(int from, int width, int height, int stride, std::uint32_t format) const;

private:
    std::size_t size_;
    int file_;
    unsigned char* bytes_ = nullptr;
};

// A picture of a few pixels a side, black or fully transparent; null without memory. Kept until the process
// ends.
inline constexpr int kFewPixels = 16;
wl_buffer* FewPixels(bool black);

} // namespace wayland
