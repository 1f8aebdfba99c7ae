// Screenshots from KWin and from the portal, as stand-ins on a bus of the test's own give them.
#include "integration/private_bus.h"
#include "win32/wayland/screenshot_services.h"

#include <chrono>
#include <png.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

using Pixels = std::vector<unsigned char>;

// All is set before they answer, and read after.
struct FakeServices {
    explicit FakeServices(const PrivateBus& bus) : connection(bus.Connect()), stranger(bus.Connect()) {
        sd_bus_add_filter(connection.get(), nullptr, Answer, this);
        for (const char* name : {"org.kde.KWin", "org.freedesktop.portal.Desktop"})
            sd_bus_request_name(connection.get(), name, 0);
    }
    ~FakeServices() { close(heldPipe_); }

    enum class When { AtOnce, AtClose, Never };
    When answers = When::AtOnce;
    const char* refusal = nullptr; // of the call
    // KWin
    std::uint32_t width = 2, height = 2, stride = 8, format = 4;
    std::string bytes = std::string(16, 'x');
    bool holdsPipe = false;
    std::string output; // that was asked for
    int native = 0;
    // The portal
    std::uint32_t code = 0;
    std::string uri;
    std::string strangersUri; // not empty: somebody else answers first
    std::string application;
    bool closed = false;

    const BusClient connection, stranger;

private:
    static int Answer(sd_bus_message* message, void* data, sd_bus_error*) {
        FakeServices& self = *static_cast<FakeServices*>(data);
        const char* member = sd_bus_message_get_member(message);
        const std::string method = member != nullptr ? member : "";
        const bool asksForPicture = method == "CaptureScreen" || method == "Screenshot";
        if (asksForPicture && self.refusal != nullptr)
            return sd_bus_reply_method_errorf(message, "org.example.Error.Refused", "%s", self.refusal);
        if (method == "CaptureScreen")
            return self.answers == When::Never ? 1 : self.CaptureScreen(message);
        if (method == "Screenshot")
            return self.Screenshot(message);
        if (method != "Register" && method != "Close")
            return 0;
        const char* name = "";
        if (method == "Register")
            self.application = sd_bus_message_read(message, "s", &name) > 0 ? name : "";
        else
            self.closed = sd_bus_message_get_path(message) == self.request_;
        if (method == "Close" && self.answers == When::AtClose)
            self.Respond(self.connection.get(), self.uri);
        return sd_bus_reply_method_return(message, "");
    }
    int CaptureScreen(sd_bus_message* message) {
        const char *name = "", *first = "", *second = "";
        int pipe = -1, cursor = 1;
        sd_bus_message_read(message, "sa{sv}h", &name, 2, &first, "b", &native, &second, "b", &cursor, &pipe);
        output = name;
        EXPECT_EQ(write(pipe, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        if (holdsPipe)
            heldPipe_ = dup(pipe); // the message closes its own
        return sd_bus_reply_method_return(message, "a{sv}", 5, "width", "u", width, "height", "u", height,
                                          "scale", "d", 1.5, "stride", "u", stride, "format", "u", format);
    }
    int Screenshot(sd_bus_message* message) {
        const char *parent = "", *first = "", *token = "";
        sd_bus_message_read(message, "sa{sv}", &parent, 1, &first, "s", &token); // the first of them
        std::string sender = sd_bus_message_get_sender(message) + 1;
        std::replace(sender.begin(), sender.end(), '.', '_');
        request_ = "/org/freedesktop/portal/desktop/request/" + sender + "/" + token;
        if (!strangersUri.empty()) {
            Respond(stranger.get(), strangersUri);
            sd_bus_flush(stranger.get());
        }
        const int result = sd_bus_reply_method_return(message, "o", request_.c_str());
        if (answers == When::AtOnce)
            Respond(connection.get(), uri);
        return result;
    }
    void Respond(sd_bus* from, const std::string& address) const {
        sd_bus_emit_signal(from, request_.c_str(), "org.freedesktop.portal.Request", "Response", "ua{sv}",
                           code, 2, "other", "u", 1, "uri", "s", address.c_str());
    }

    std::string request_; // its object
    int heldPipe_ = -1;
};

class ScreenshotServices : public testing::Test {
protected:
    ScreenshotServices() { UseBus(bus.Address()); }
    static void UseBus(const std::string& address) { setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1); }
    bool AskKwin() {
        return Ask([this] { return wayland::PhotographByKwin("DP-2", &picture, &problem); });
    }
    bool AskPortal(const Place& desktop = {0, 0, 4, 2}, const Place& output = {0, 0, 4, 2}, int width = 4,
                   int height = 2) {
        return Ask(
            [&] { return wayland::PhotographByPortal(desktop, output, width, height, &picture, &problem); });
    }
    template <class Function> bool Ask(Function ask) {
        picture = {Pixels(4, 1), 1, 1};
        problem.clear();
        const std::jthread thread = AnswerOn(services.connection.get());
        const auto from = std::chrono::steady_clock::now();
        const bool taken = ask();
        EXPECT_LT(std::chrono::steady_clock::now() - from, std::chrono::seconds(20)); // a busy machine's
        EXPECT_EQ(taken, problem.empty()) << problem;
        EXPECT_EQ(taken, !picture.pixels.empty());
        return taken;
    }
    // Each pixel's blue is its column and its green its row.
    std::string WritePng(const std::string& name, int width, int height) const {
        Pixels pixels;
        for (int i = 0; i < width * height; ++i)
            for (const int byte : {i % width, i / width, 99, 255})
                pixels.push_back(static_cast<unsigned char>(byte));
        const auto columns = static_cast<png_uint_32>(width), rows = static_cast<png_uint_32>(height);
        png_image image = {nullptr, PNG_IMAGE_VERSION, columns, rows, PNG_FORMAT_BGRA, 0, 0, 0, {}};
        png_image_write_to_file(&image, folder.File(name).c_str(), 0, pixels.data(), 0, nullptr);
        return folder.File(name);
    }

    PrivateBus bus;
    FakeServices services{bus};
    TempFolder folder;
    Photograph picture;
    std::string problem;
};

TEST_F(ScreenshotServices, KwinsPictureIsReadInAllItsFormats) {
    // One pixel of red 0x12, green 0x34, blue 0x56, in formats by their first and last numbers.
    const std::string bgrx = "\x56\x34\x12\xff", rgbx = "\x12\x34\x56\xff";
    const std::uint32_t rgb30 = 0x12u << 22 | 0x34u << 12 | 0x56u << 2 | 0xC0000000u,
                        bgr30 = 0x56u << 22 | 0x34u << 12 | 0x12u << 2;
    const auto bytesOf = [](std::uint32_t number) {
        return std::string(reinterpret_cast<const char*>(&number), 4);
    };
    const struct {
        std::uint32_t first, last;
        std::string pixel;
    } formats[] = {{4, 6, bgrx},
                   {13, 13, rgbx.substr(0, 3)},
                   {16, 18, rgbx},
                   {19, 20, bytesOf(bgr30)},
                   {21, 22, bytesOf(rgb30)},
                   {25, 27, std::string("\xEE\x12\xEE\x34\xEE\x56\xff\xff")},
                   {29, 29, bgrx.substr(0, 3)}};
    for (const auto& [first, last, pixel] : formats) {
        for (services.format = first; services.format <= last; ++services.format) {
            SCOPED_TRACE(services.format);
            const std::string black(pixel.size(), '\0'), padding = "-gap-";
            services.stride = static_cast<std::uint32_t>(2 * pixel.size() + padding.size());
            services.bytes = pixel + black + padding + black + pixel + padding;
            ASSERT_TRUE(AskKwin()) << problem;
            EXPECT_EQ(picture.width, 2);
            EXPECT_EQ(picture.height, 2);
            EXPECT_EQ(picture.pixels,
                      (Pixels{0x56, 0x34, 0x12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x56, 0x34, 0x12, 0}));
        }
    }
    EXPECT_EQ(services.output, "DP-2");
    EXPECT_NE(services.native, 0);
}

TEST_F(ScreenshotServices, WhatKwinCannotHaveMeantIsNoPicture) {
    const auto expect = [this](const char* words) {
        EXPECT_FALSE(AskKwin());
        EXPECT_NE(problem.find(words), std::string::npos) << problem;
    };
    services.bytes.pop_back();
    expect("ends in row 1 of 2");
    services.bytes.clear();
    for (const std::uint32_t format : {0u, 3u, 30u, 4000000000u}) {
        services.format = format;
        expect("pixel format");
    }
    services.format = 4;
    const std::uint32_t sizes[][3] = {{0, 2, 8},
                                      {2, 0, 8},
                                      {2, 2, 7},
                                      {2, 2, 4000000000},
                                      {2, 40000, 8},
                                      {40000, 2, 160000},
                                      {30000, 30000, 120000},
                                      {0x80000000, 1, 0}};
    for (const auto& [width, height, stride] : sizes) {
        services.width = width;
        services.height = height;
        services.stride = stride;
        expect("a picture of");
    }
}

TEST_F(ScreenshotServices, WhoDoesNotAnswerIsNotWaitedForLong) {
    services.refusal = "not for this program";
    EXPECT_FALSE(AskKwin());
    EXPECT_EQ(problem, "KWin's screenshot: not for this program");
    services.refusal = nullptr;
    services.holdsPipe = true;
    services.bytes.pop_back();
    EXPECT_FALSE(AskKwin());
    services.answers = FakeServices::When::Never;
    EXPECT_FALSE(AskKwin());
    sd_bus_release_name(services.connection.get(), "org.kde.KWin");
    EXPECT_FALSE(AskKwin());
    bus.Stop();
    EXPECT_FALSE(AskKwin());
    UseBus("unix:path=" + folder.File("none"));
    EXPECT_FALSE(AskKwin());
    EXPECT_FALSE(AskPortal());
}

TEST_F(ScreenshotServices, OfTheDesktopsPictureTheOutputsPartIsTaken) {
    const Place all = {-10, 0, 30, 10}, left = {-10, 0, 20, 10}, right = {10, 0, 10, 10};
    const struct {
        const char* what;
        int wide, high; // of the portal's picture
        Place desktop, output;
        int width, height; // of the output
        int from, step;    // the column in the first pixel, and from each pixel to the next
    } cases[] = {
        {"one output", 30, 10, all, all, 30, 10, 0, 1},
        {"the left one", 30, 10, all, left, 20, 10, 0, 1},
        {"the right one", 30, 10, all, right, 10, 10, 20, 1},
        {"twice the pixels", 60, 20, all, right, 20, 20, 40, 1},
        {"the other output has twice the pixels", 60, 20, all, right, 10, 10, 40, 2},
        {"a pixel short by rounding", 47, 15, {0, 0, 31, 10}, {20, 0, 11, 10}, 18, 15, 29, 1},
        {"the output alone", 20, 20, all, right, 20, 20, 0, 1},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        const std::string file = WritePng("a b%.png", each.wide, each.high);
        services.uri = "file://" + folder.File("a%20b%25.png");
        ASSERT_TRUE(AskPortal(each.desktop, each.output, each.width, each.height)) << problem;
        ASSERT_EQ(picture.width, each.width);
        ASSERT_EQ(picture.height, each.height);
        ASSERT_EQ(picture.pixels.size(), 4u * picture.width * picture.height);
        for (int i = 0; i < each.width * each.height; ++i) {
            ASSERT_EQ(picture.pixels[4 * i], each.from + each.step * (i % each.width)) << i;
            ASSERT_EQ(picture.pixels[4 * i + 1], each.step * (i / each.width)) << i;
            ASSERT_EQ(picture.pixels[4 * i + 2], 99);
        }
        EXPECT_FALSE(fs::exists(file));
    }
    EXPECT_EQ(services.application, "org.orinlab.Tamblor");
    services.uri = "file://localhost" + WritePng("other", 30, 20);
    EXPECT_FALSE(AskPortal());
    EXPECT_NE(problem.find("30 x 20"), std::string::npos) << problem;
}

TEST_F(ScreenshotServices, AFileThatIsNoPictureIsDeletedAndAnythingElseStays) {
    const auto expect = [this](const std::string& uri, const std::string& file, bool stays) {
        services.uri = uri;
        EXPECT_FALSE(AskPortal()) << uri;
        EXPECT_EQ(fs::exists(fs::symlink_status(file)), stays) << uri;
    };
    const std::string png = WritePng("picture", 4, 2), whole = folder.Read("picture");
    const std::string bad[] = {"", "no picture at all", whole.substr(0, 40),
                               whole.substr(0, whole.size() - 20)};
    for (const std::string& bytes : bad)
        expect("file://" + folder.File("bad"), folder.Write("bad", bytes), false);
    expect("file://" + folder.File("wide"), WritePng("wide", 32769, 1), false);
    fs::create_symlink(png, folder.File("link"));
    mkfifo(folder.File("fifo").c_str(), 0600);
    fs::create_directory(folder.File("folder"));
    for (const char* other : {"link", "fifo", "folder"})
        expect("file://" + folder.File(other), folder.File(other), true);
    WritePng("\a", 4, 2); // what is left of the last address without its wrong digit
    for (const std::string& start : {std::string(), png, "file:" + png, "http://" + png,
                                     "file://elsewhere" + png, std::string("file://")})
        expect(start, png, true);
    for (const char* name : {"none", "picture%0", "picture%00", "%7g"})
        expect("file://" + folder.File(name), png, true);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(png.c_str(), 65534, 65534), 0);
        expect("file://" + png, png, true);
    }
    EXPECT_EQ(folder.Read("picture"), whole);
}

TEST_F(ScreenshotServices, ThePortalMayRefuseOrBeLateOrSilent) {
    const std::string file = WritePng("picture", 4, 2), strangers = WritePng("strangers", 4, 2);
    services.uri = "file://" + file;
    for (services.code = 1; services.code < 3; ++services.code) {
        EXPECT_FALSE(AskPortal());
        EXPECT_NE(problem.find("refused"), std::string::npos) << problem;
    }
    services.code = 0;
    services.refusal = "no screenshots here";
    EXPECT_FALSE(AskPortal());
    EXPECT_EQ(problem, "the screenshot portal: no screenshots here");
    services.refusal = nullptr;
    EXPECT_FALSE(services.closed);
    services.answers = FakeServices::When::Never;
    services.strangersUri = "file://" + strangers;
    EXPECT_FALSE(AskPortal());
    EXPECT_NE(problem.find("no answer"), std::string::npos) << problem;
    EXPECT_TRUE(services.closed);
    services.answers = FakeServices::When::AtClose;
    EXPECT_TRUE(fs::exists(file));
    EXPECT_TRUE(AskPortal()) << problem;
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(fs::exists(strangers));
}

} // namespace
