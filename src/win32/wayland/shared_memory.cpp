#include "win32/wayland/shared_memory.h"

#include "win32/wayland/wayland.h"

#include <sys/mman.h>
#include <unistd.h>

namespace wayland {

SharedMemory::SharedMemory(std::size_t size)
    : size_(size), file_(memfd_create("tamblor", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
    if (file_ < 0 || ftruncate(file_, static_cast<off_t>(size)) != 0)
        return;
    void* mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
    if (mapped != MAP_FAILED)
        bytes_ = static_cast<unsigned char*>(mapped);
}

SharedMemory::~SharedMemory() {
    if (bytes_ != nullptr)
        munmap(bytes_, size_);
    if (file_ >= 0)
        close(file_);
}

wl_buffer* SharedMemory::NewBuffer(int from, int width, int height, int stride, std::uint32_t format) const {
    wl_shm_pool* pool = wl_shm_create_pool(Offers().shm, file_, static_cast<std::int32_t>(size_));
    wl_buffer* buffer = wl_shm_pool_create_buffer(pool, from, width, height, stride, format);
    wl_shm_pool_destroy(pool);
    return buffer;
}

wl_buffer* FewPixels(bool black) {
    constexpr int kRow = kFewPixels * 4; // bytes; all of them 0: black, and transparent where there is alpha
    struct Pixels {
        wl_buffer* black = nullptr;
        wl_buffer* nothing = nullptr;
    };
    static const Pixels pixels = [] {
        const SharedMemory memory(kRow * kFewPixels);
        return memory.Bytes() == nullptr
                   ? Pixels()
                   : Pixels{memory.NewBuffer(0, kFewPixels, kFewPixels, kRow, WL_SHM_FORMAT_XRGB8888),
                            memory.NewBuffer(0, kFewPixels, kFewPixels, kRow, WL_SHM_FORMAT_ARGB8888)};
    }();
    return black ? pixels.black : pixels.nothing;
}

} // namespace wayland
