// The compositor's picture of an output becomes the photograph, whatever its format and the monitor's turn;
// and the newer protocol for copies, from a compositor that has nothing but that and what the saver connects
// by.
#include "win32/wayland/output_copy.h"
#include "win32/wayland/shared_picture.h"
#include "win32/wayland/wayland.h"

#include "image-copy-capture-client-protocol.h"
#include "viewporter-client-protocol.h"
#include "xdg-shell-client-protocol.h"

#include <gtest/gtest.h>
#include <wayland-server-core.h>

#include <atomic>
#include <cstring>
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

// Pixels that are letters, rows between blanks, each followed by what is no part of the picture.
wayland::SharedPicture Letters(const std::string& rows, bool upsideDown, std::vector<unsigned char>* bytes) {
    constexpr int kGap = 8; // bytes
    wayland::SharedPicture picture;
    picture.width = static_cast<int>(rows.find(' '));
    picture.height = static_cast<int>(rows.size() + 1) / (picture.width + 1);
    picture.stride = picture.width * 4 + kGap;
    picture.format = WL_SHM_FORMAT_XRGB8888;
    picture.upsideDown = upsideDown;
    bytes->assign(static_cast<std::size_t>(picture.stride * picture.height), '!');
    for (int i = 0; const char letter : rows) {
        const int y = i / (picture.width + 1), x = i++ % (picture.width + 1);
        if (letter != ' ')
            (*bytes)[(upsideDown ? picture.height - 1 - y : y) * picture.stride + x * 4] = letter;
    }
    picture.bytes = bytes->data();
    return picture;
}

std::string Rows(const Photograph& photograph) {
    std::string rows;
    for (int y = 0; y < photograph.height; ++y) {
        rows += y > 0 ? " " : "";
        for (int x = 0; x < photograph.width; ++x)
            rows += static_cast<char>(
                photograph.pixels[static_cast<std::size_t>((y * photograph.width + x) * 4)]);
    }
    return rows;
}

// What the compositor draws for a monitor on which the user sees AB, CD and EF below each other.
TEST(SharedPicture, StandsUprightHoweverTheMonitorIsTurned) {
    const std::pair<int, const char*> cases[] = {
        {WL_OUTPUT_TRANSFORM_NORMAL, "AB CD EF"},      {WL_OUTPUT_TRANSFORM_90, "BDF ACE"},
        {WL_OUTPUT_TRANSFORM_180, "FE DC BA"},         {WL_OUTPUT_TRANSFORM_270, "ECA FDB"},
        {WL_OUTPUT_TRANSFORM_FLIPPED, "BA DC FE"},     {WL_OUTPUT_TRANSFORM_FLIPPED_90, "ACE BDF"},
        {WL_OUTPUT_TRANSFORM_FLIPPED_180, "EF CD AB"}, {WL_OUTPUT_TRANSFORM_FLIPPED_270, "FDB ECA"},
    };
    for (const auto& [transform, rows] : cases)
        for (const bool upsideDown : {false, true}) {
            std::vector<unsigned char> bytes;
            wayland::SharedPicture picture = Letters(rows, upsideDown, &bytes);
            picture.transform = transform;
            EXPECT_EQ(Rows(ToPhotograph(picture, 2, 3)), "AB CD EF") << transform << upsideDown;
            EXPECT_EQ(Rows(ToPhotograph(picture, 9, 2)), "AB CD") << transform << upsideDown;
        }
}

TEST(SharedPicture, HasTheColoursOfEachFormat) {
    const auto ten = [](unsigned eight) { return eight << 2 | eight >> 6; }; // as a compositor widens it
    const std::uint32_t red = 0x81, green = 0x02, blue = 0xFE;
    const std::pair<std::uint32_t, std::uint32_t> cases[] = {
        {WL_SHM_FORMAT_XRGB8888, 0x55000000 | red << 16 | green << 8 | blue},
        {WL_SHM_FORMAT_ABGR8888, 0xFF000000 | blue << 16 | green << 8 | red},
        {WL_SHM_FORMAT_RGBX8888, red << 24 | green << 16 | blue << 8 | 0x55},
        {WL_SHM_FORMAT_BGRA8888, blue << 24 | green << 16 | red << 8 | 0xFF},
        {WL_SHM_FORMAT_XRGB2101010, 1u << 30 | ten(red) << 20 | ten(green) << 10 | ten(blue)},
        {WL_SHM_FORMAT_ABGR2101010, 3u << 30 | ten(blue) << 20 | ten(green) << 10 | ten(red)},
    };
    for (const auto& [format, pixel] : cases) {
        ASSERT_TRUE(wayland::IsKnownFormat(format)) << format;
        unsigned char bytes[4] = {};
        std::memcpy(bytes, &pixel, sizeof bytes);
        wayland::SharedPicture picture;
        picture.bytes = bytes;
        picture.format = format;
        picture.width = picture.height = 1;
        picture.stride = 4;
        const Photograph photograph = ToPhotograph(picture, 1, 1);
        EXPECT_EQ(photograph.pixels, (std::vector<unsigned char>{0xFE, 0x02, 0x81, 0})) << std::hex << format;
    }
    EXPECT_FALSE(wayland::IsKnownFormat(WL_SHM_FORMAT_RGB565));
}

} // namespace
