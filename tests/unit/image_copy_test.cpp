// The desktop by the newer protocol for copies, from a compositor that has nothing but what the saver needs
// to connect and that protocol.
#include "win32/wayland/output_copy.h"
#include "win32/wayland/wayland.h"

#include "image-copy-capture-client-protocol.h"
#include "viewporter-client-protocol.h"
#include "xdg-shell-client-protocol.h"

#include <gtest/gtest.h>
#include <wayland-server-core.h>

#include <atomic>
#include <string_view>
#include <sys/socket.h>
#include <thread>

namespace {

using std::string_view;

constexpr int kWidth = 3, kHeight = 2, kPixels = kWidth * kHeight;

// How a session goes.
struct Course {
    std::vector<std::uint32_t> formats;
    string_view end; // the event that it ends with
    const char* problem;
};
const Course kCourses[] = {
    {{WL_SHM_FORMAT_C8, WL_SHM_FORMAT_XBGR8888, WL_SHM_FORMAT_XRGB8888}, "ready", ""},
    {{WL_SHM_FORMAT_XBGR8888}, "failed", "the compositor has not copied the output"},
    {{WL_SHM_FORMAT_XBGR8888}, "stopped", "the compositor has nothing to copy"},
    {{WL_SHM_FORMAT_C8}, "ready", "the compositor's pixels are of an unknown format, 538982467"},
    {{}, "ready", "the compositor's pixels are of an unknown format, 4294967295"},
};

class CopyingCompositor {
public:
    CopyingCompositor() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        wl_display_init_shm(display_);
        wl_display_add_shm_format(display_, WL_SHM_FORMAT_XBGR8888);
        for (const wl_interface* each :
             {&wl_compositor_interface, &wp_viewporter_interface, &xdg_wm_base_interface,
              &wl_output_interface, &ext_output_image_capture_source_manager_v1_interface,
              &ext_image_copy_capture_manager_v1_interface})
            wl_global_create(display_, each, 1, const_cast<wl_interface*>(each), OnBind);
        wl_client_create(display_, ends[0]);
        setenv("WAYLAND_SOCKET", std::to_string(ends[1]).c_str(), 1);
        setenv("DBUS_SESSION_BUS_ADDRESS", "none:", 1);
        thread_ = std::thread([this] {
            while (!over_) {
                wl_event_loop_dispatch(wl_display_get_event_loop(display_), 10);
                wl_display_flush_clients(display_);
            }
        });
    }
    ~CopyingCompositor() {
        over_ = true;
        thread_.join();
        wl_display_destroy_clients(display_);
        wl_display_destroy(display_);
    }
    CopyingCompositor(const CopyingCompositor&) = delete;
    CopyingCompositor& operator=(const CopyingCompositor&) = delete;

private:
    template <class... Arguments>
    static void Tell(wl_resource* resource, const wl_interface& interface, string_view event,
                     Arguments... arguments) {
        for (int i = 0; i < interface.event_count; ++i)
            if (interface.events[i].name == event)
                return wl_resource_post_event(resource, static_cast<std::uint32_t>(i), arguments...);
        ADD_FAILURE() << event;
    }
    static void OnBind(wl_client* client, void* interface, std::uint32_t version, std::uint32_t id) {
        wl_resource* resource = Add(client, static_cast<wl_interface*>(interface), version, id);
        if (interface == &wl_output_interface)
            Tell(resource, wl_output_interface, "mode", WL_OUTPUT_MODE_CURRENT, kWidth, kHeight, 60000);
    }
    static wl_resource* Add(wl_client* client, const wl_interface* interface, std::uint32_t version,
                            std::uint32_t id) {
        wl_resource* resource = wl_resource_create(client, interface, static_cast<int>(version), id);
        wl_resource_set_dispatcher(resource, OnRequest, nullptr, nullptr, nullptr);
        return resource;
    }
    static int OnRequest(const void*, void* target, std::uint32_t, const wl_message* message,
                         wl_argument* arguments) {
        auto* resource = static_cast<wl_resource*>(target);
        const string_view request = message->name;
        const auto add = [&](const wl_interface& interface) {
            return Add(wl_resource_get_client(resource), &interface, 1, arguments[0].n);
        };
        if (request == "create_source")
            add(ext_image_capture_source_v1_interface);
        else if (request == "create_session")
            Describe(add(ext_image_copy_capture_session_v1_interface));
        else if (request == "create_frame")
            add(ext_image_copy_capture_frame_v1_interface);
        else if (request == "attach_buffer")
            buffer_ = reinterpret_cast<wl_resource*>(arguments[0].o);
        else if (request == "capture")
            Copy(resource);
        else if (request == "destroy")
            wl_resource_destroy(resource);
        return 0;
    }
    static void Describe(wl_resource* session) {
        constexpr const wl_interface& interface = ext_image_copy_capture_session_v1_interface;
        course_ = course_ == nullptr ? kCourses : course_ + 1;
        Tell(session, interface, "buffer_size", kWidth, kHeight);
        for (const std::uint32_t format : course_->formats)
            Tell(session, interface, "shm_format", format);
        Tell(session, interface, course_->end == "stopped" ? "stopped" : "done");
    }
    // Pixels of rising red, in the order of a monitor that stands on its head.
    static void Copy(wl_resource* frame) {
        constexpr const wl_interface& interface = ext_image_copy_capture_frame_v1_interface;
        wl_shm_buffer* buffer = wl_shm_buffer_get(buffer_);
        ASSERT_EQ(wl_shm_buffer_get_format(buffer), WL_SHM_FORMAT_XBGR8888);
        auto* pixels = static_cast<std::uint32_t*>(wl_shm_buffer_get_data(buffer));
        for (std::uint32_t i = 0; i < kPixels; ++i)
            pixels[kPixels - 1 - i] = 0x332200 + i;
        Tell(frame, interface, "transform", WL_OUTPUT_TRANSFORM_180);
        if (course_->end == "failed")
            return Tell(frame, interface, "failed", 0);
        Tell(frame, interface, "ready");
    }

    wl_display* display_ = wl_display_create();
    std::thread thread_;
    std::atomic<bool> over_ = false;
    static inline const Course* course_ = nullptr;
    static inline wl_resource* buffer_ = nullptr;
};

TEST(ImageCopy, IsTheOutputAsItIsSeenOrTheReasonWhyNot) {
    const CopyingCompositor compositor;
    const Place screen = wayland::FindScreen();
    ASSERT_EQ(screen.width, kWidth) << wayland::FindHindrance();
    for (const Course& course : kCourses) {
        Photograph picture;
        std::string problem;
        const auto start = std::chrono::steady_clock::now();
        const bool found = wayland::PhotographDesktop(screen.width, screen.height, &picture, &problem);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1)) << "it waits in vain";
        EXPECT_EQ(found, problem.empty());
        EXPECT_EQ(problem.substr(0, problem.find(';')), course.problem);
        if (!found)
            continue;
        ASSERT_EQ(picture.pixels.size(), kPixels * 4U);
        for (std::size_t i = 0; i < kPixels; ++i)
            EXPECT_EQ(picture.pixels[i * 4] + (picture.pixels[i * 4 + 1] << 8) +
                          (picture.pixels[i * 4 + 2] << 16),
                      0x33 + 0x2200 + static_cast<int>(i << 16));
    }
}

} // namespace
