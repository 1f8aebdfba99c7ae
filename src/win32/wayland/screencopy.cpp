// A copy of an output by wlroots' own protocol.
#include "win32/wayland/output_copy.h"
#include "win32/wayland/wayland.h"

#include "wlr-screencopy-client-protocol.h"

namespace wayland {

namespace {

constexpr zwlr_screencopy_frame_v1_listener kCopyListener = {
    .buffer =
        [](void* data, zwlr_screencopy_frame_v1* frame, std::uint32_t format, std::uint32_t width,
           std::uint32_t height, std::uint32_t stride) {
            CopyOf(data)->picture.format = format;
            CopyOf(data)->picture.width = static_cast<int>(width);
            CopyOf(data)->picture.height = static_cast<int>(height);
            CopyOf(data)->picture.stride = static_cast<int>(stride);
            if (zwlr_screencopy_frame_v1_get_version(frame) <
                ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
                CopyOf(data)->described = true;
        },
    .flags =
        [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t flags) {
            CopyOf(data)->picture.upsideDown = (flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT) != 0;
        },
    .ready = [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t,
                std::uint32_t) { CopyOf(data)->done = true; },
    .failed = [](void* data, zwlr_screencopy_frame_v1*) { CopyOf(data)->failed = true; },
    .damage = kPassedOver,
    .linux_dmabuf = kPassedOver,
    .buffer_done = [](void* data, zwlr_screencopy_frame_v1*) { CopyOf(data)->described = true; },
};

} // namespace

std::string CopyByScreencopy(const Output& output, int width, int height, Photograph* photograph) {
    if (Offers().screencopy == nullptr)
        return "the compositor has no zwlr_screencopy_manager_v1";
    Copy copy;
    copy.picture.transform = output.transform;
    zwlr_screencopy_frame_v1* frame =
        zwlr_screencopy_manager_v1_capture_output(Offers().screencopy, 0, output.id);
    zwlr_screencopy_frame_v1_add_listener(frame, &kCopyListener, &copy);
    std::string problem = TakeCopy(
        &copy, [frame](wl_buffer* buffer) { zwlr_screencopy_frame_v1_copy(frame, buffer); }, width, height,
        photograph);
    zwlr_screencopy_frame_v1_destroy(frame);
    return problem;
}

} // namespace wayland
