// A copy of an output by the protocol that follows wlroots' own. A session tells what its buffers must be; a
// frame of it is one copy.
#include "win32/wayland/output_copy.h"
#include "win32/wayland/wayland.h"

#include "image-copy-capture-client-protocol.h"

namespace wayland {

namespace {

constexpr std::uint32_t kNoFormat = UINT32_MAX;

constexpr ext_image_copy_capture_session_v1_listener kSessionListener = {
    .buffer_size =
        [](void* data, ext_image_copy_capture_session_v1*, std::uint32_t width, std::uint32_t height) {
            CopyOf(data)->picture.width = static_cast<int>(width);
            CopyOf(data)->picture.height = static_cast<int>(height);
            CopyOf(data)->picture.stride = static_cast<int>(width * 4);
        },
    .shm_format =
        [](void* data, ext_image_copy_capture_session_v1*, std::uint32_t format) {
            if (!IsKnownFormat(CopyOf(data)->picture.format))
                CopyOf(data)->picture.format = format;
        },
    .dmabuf_device = kPassedOver,
    .dmabuf_format = kPassedOver,
    .done = [](void* data, ext_image_copy_capture_session_v1*) { CopyOf(data)->described = true; },
    .stopped = [](void* data, ext_image_copy_capture_session_v1*) { CopyOf(data)->failed = true; },
};

constexpr ext_image_copy_capture_frame_v1_listener kFrameListener = {
    .transform =
        [](void* data, ext_image_copy_capture_frame_v1*, std::uint32_t transform) {
            CopyOf(data)->picture.transform = static_cast<int>(transform);
        },
    .damage = kPassedOver,
    .presentation_time = kPassedOver,
    .ready = [](void* data, ext_image_copy_capture_frame_v1*) { CopyOf(data)->done = true; },
    .failed = [](void* data, ext_image_copy_capture_frame_v1*,
                 std::uint32_t) { CopyOf(data)->failed = true; },
};

} // namespace

std::string CopyByImageCapture(const Output& output, int width, int height, Photograph* photograph) {
    Copy copy;
    copy.picture.format = kNoFormat;
    auto* source = ext_output_image_capture_source_manager_v1_create_source(Offers().imageSources, output.id);
    auto* session = ext_image_copy_capture_manager_v1_create_session(Offers().imageCopies, source, 0);
    ext_image_copy_capture_session_v1_add_listener(session, &kSessionListener, &copy);
    auto* frame = ext_image_copy_capture_session_v1_create_frame(session);
    ext_image_copy_capture_frame_v1_add_listener(frame, &kFrameListener, &copy);
    const auto ask = [frame, &copy](wl_buffer* buffer) {
        ext_image_copy_capture_frame_v1_attach_buffer(frame, buffer);
        ext_image_copy_capture_frame_v1_damage_buffer(frame, 0, 0, copy.picture.width, copy.picture.height);
        ext_image_copy_capture_frame_v1_capture(frame);
    };
    std::string problem = TakeCopy(&copy, ask, width, height, photograph);
    ext_image_copy_capture_frame_v1_destroy(frame);
    ext_image_copy_capture_session_v1_destroy(session);
    ext_image_capture_source_v1_destroy(source);
    return problem;
}

} // namespace wayland
