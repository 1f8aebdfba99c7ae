#include "win32/wayland/output_copy.h"

#include "win32/wayland/shared_memory.h"
#include "win32/wayland/wayland.h"

#include <algorithm>

namespace wayland {

namespace {

constexpr int kLargest = 16384; // pixels a side

bool HasSize(const SharedPicture& picture) {
    return picture.width > 0 && picture.height > 0 && std::max(picture.width, picture.height) <= kLargest &&
           picture.stride >= picture.width * 4 && picture.stride <= INT32_MAX / picture.height;
}

} // namespace

std::string TakeCopy(Copy* copy, const std::function<void(wl_buffer*)>& ask, int width, int height,
                     Photograph* photograph) {
    constexpr std::chrono::milliseconds kLimit{2000}; // an output that is off shows nothing to be copied
    if (!AwaitReply([&] { return copy->described || copy->failed; }, kLimit) || copy->failed)
        return "the compositor has nothing to copy";
    SharedPicture picture = copy->picture; // it may be described anew later
    if (!HasSize(picture) || !IsKnownFormat(picture.format))
        return "the compositor's pixels are of an unknown format, " + std::to_string(picture.format);
    const SharedMemory memory(static_cast<std::size_t>(picture.stride) *
                              static_cast<std::size_t>(picture.height));
    if (memory.Bytes() == nullptr)
        return "there is no memory for the copy";
    wl_buffer* buffer = memory.NewBuffer(0, picture.width, picture.height, picture.stride, picture.format);
    ask(buffer);
    const bool answered = AwaitReply([&] { return copy->done || copy->failed; }, kLimit);
    wl_buffer_destroy(buffer);
    if (!answered || copy->failed)
        return "the compositor has not copied the output";
    picture.upsideDown = copy->picture.upsideDown;
    picture.transform = copy->picture.transform;
    picture.bytes = memory.Bytes();
    *photograph = ToPhotograph(picture, width, height);
    return "";
}

} // namespace wayland
