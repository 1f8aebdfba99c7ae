// The desktop: what the output of the show shows. The compositor copies it; where it does so for no ordinary
// program, services on the session bus are asked.
#include "win32/wayland/screenshot_services.h"
#include "win32/wayland/shared_memory.h"
#include "win32/wayland/shared_picture.h"
#include "win32/wayland/wayland.h"

#include "wlr-screencopy-client-protocol.h"

#include <algorithm>
#include <string>

namespace wayland {

namespace {

constexpr int kLargest = 16384; // pixels a side

// A copy of an output in the making.
struct Copy {
    SharedPicture picture;
    bool described = false, done = false, failed = false;
};

Copy* Of(void* data) {
    return static_cast<Copy*>(data);
}

constexpr zwlr_screencopy_frame_v1_listener kCopyListener = {
    .buffer =
        [](void* data, zwlr_screencopy_frame_v1* frame, std::uint32_t format, std::uint32_t width,
           std::uint32_t height, std::uint32_t stride) {
            Of(data)->picture.format = format;
            Of(data)->picture.width = static_cast<int>(width);
            Of(data)->picture.height = static_cast<int>(height);
            Of(data)->picture.stride = static_cast<int>(stride);
            if (zwlr_screencopy_frame_v1_get_version(frame) <
                ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
                Of(data)->described = true;
        },
    .flags =
        [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t flags) {
            Of(data)->picture.upsideDown = (flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT) != 0;
        },
    .ready = [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t,
                std::uint32_t) { Of(data)->done = true; },
    .failed = [](void* data, zwlr_screencopy_frame_v1*) { Of(data)->failed = true; },
    .damage = kPassedOver,
    .linux_dmabuf = kPassedOver,
    .buffer_done = [](void* data, zwlr_screencopy_frame_v1*) { Of(data)->described = true; },
};

bool HasSize(const SharedPicture& picture) {
    return picture.width > 0 && picture.height > 0 && std::max(picture.width, picture.height) <= kLargest &&
           picture.stride >= picture.width * 4 && picture.stride <= INT32_MAX / picture.height;
}

// What went wrong, or "".
std::string CopyFrame(zwlr_screencopy_frame_v1* frame, Copy* copy, int transform, int width, int height,
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
    zwlr_screencopy_frame_v1_copy(frame, buffer);
    const bool answered = AwaitReply([&] { return copy->done || copy->failed; }, kLimit);
    wl_buffer_destroy(buffer);
    if (!answered || copy->failed)
        return "the compositor has not copied the output";
    picture.upsideDown = copy->picture.upsideDown;
    picture.bytes = memory.Bytes();
    picture.transform = transform;
    *photograph = ToPhotograph(picture, width, height);
    return "";
}

std::string CopyOutput(const Output& output, int width, int height, Photograph* photograph) {
    if (Offers().screencopy == nullptr)
        return "the compositor has no zwlr_screencopy_manager_v1";
    Copy copy;
    zwlr_screencopy_frame_v1* frame =
        zwlr_screencopy_manager_v1_capture_output(Offers().screencopy, 0, output.id);
    zwlr_screencopy_frame_v1_add_listener(frame, &kCopyListener, &copy);
    std::string problem = CopyFrame(frame, &copy, output.transform, width, height, photograph);
    zwlr_screencopy_frame_v1_destroy(frame);
    return problem;
}

// KWin knows outputs by their names. The problems are those of all that was tried.
bool AskServices(const Output& output, Photograph* picture, std::string* problems) {
    std::string problem;
    if (!output.name.empty() && PhotographByKwin(output.name, picture, &problem))
        return true;
    if (!output.name.empty())
        *problems += "; " + problem;
    if (PhotographByPortal(WholeDesktop(), output.Logical(), output.Width(), output.Height(), picture,
                           &problem))
        return true;
    *problems += "; " + problem;
    return false;
}

} // namespace

// A part of the desktop has nobody in front of it who could answer a service's question, and what it lies on
// may be a lock program's.
bool PhotographDesktop(int width, int height, Photograph* picture, std::string* problem) {
    *picture = {};
    const std::vector<const Output*> own =
        Connection() != nullptr ? OwnOutputs() : std::vector<const Output*>();
    *problem = "there is no output (desktop capture)";
    if (own.empty())
        return false;
    const Output output = *own.front(); // it may go meanwhile
    *problem = CopyOutput(output, width, height, picture);
    if (problem->empty() || (!NamedLayer() && AskServices(output, picture, problem)))
        return true;
    *picture = {};
    *problem += " (desktop capture)";
    return false;
}

} // namespace wayland
