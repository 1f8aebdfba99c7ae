// The portal for screenshots: it asks the user where it has to, and answers with the name of a PNG file.
#include "win32/wayland/screenshot_services.h"
#include "win32/wayland/session_bus.h"

#include <png.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string_view>

namespace wayland {

namespace {

constexpr milliseconds kPatience{6000}; // the portal may have to start first, and may ask the user
constexpr milliseconds kClosePatience{500};
constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kRequest = "org.freedesktop.portal.Request";
constexpr Object kScreenshot = {kPortal, kPortalPath, "org.freedesktop.portal.Screenshot"};
constexpr Object kRegistry = {kPortal, kPortalPath, "org.freedesktop.host.portal.Registry"};
constexpr const char* kOurName = "org.orinlab.Tamblor"; // of the desktop entry

struct Answer {
    std::string portal; // only from there
    bool come = false;
    std::uint32_t code = 0;
    std::string uri;
};

int TakeAnswer(sd_bus_message* message, void* data, sd_bus_error*) {
    Answer& answer = *static_cast<Answer*>(data);
    const char* sender = sd_bus_message_get_sender(message);
    if (answer.come || sender == nullptr || answer.portal != sender)
        return 0;
    answer.come = sd_bus_message_read(message, "u", &answer.code) > 0;
    ReadEntries<const char*>(message, "s", [&answer](const std::string& name, const char* value) {
        if (name == "uri")
            answer.uri = value;
    });
    return 0;
}

// Where the portal puts the object for a request with this token.
std::string RequestPath(sd_bus* bus, const std::string& token) {
    const char* name = nullptr;
    sd_bus_get_unique_name(bus, &name);
    std::string sender = name != nullptr && *name != '\0' ? name + 1 : "";
    std::ranges::replace(sender, '.', '_');
    return std::string(kPortalPath) + "/request/" + sender + "/" + token;
}

// The address of a file with the picture.
bool AskPortal(std::string* uri, std::string* problem) {
    Session session(kPatience);
    if (!session.Open(problem))
        return false;
    std::string ignored; // older portals know programs by how they were started alone
    session.Call(kRegistry, "Register", &ignored, "sa{sv}", kOurName, 0);
    const std::string token = "tamblor" + std::to_string(std::random_device{}());
    const std::string path = RequestPath(session.Bus(), token);
    Answer answer;
    sd_bus_match_signal(session.Bus(), nullptr, nullptr, path.c_str(), kRequest, "Response", TakeAnswer,
                        &answer);
    const Message reply = session.Call(kScreenshot, "Screenshot", problem, "sa{sv}", "", 2, "handle_token",
                                       "s", token.c_str(), "interactive", "b", 0);
    if (reply == nullptr)
        return false;
    if (const char* portal = sd_bus_message_get_sender(reply.get()))
        answer.portal = portal;
    const auto hasCome = [&answer] { return answer.come; };
    if (!session.WaitUntil(hasCome)) {
        // An answer may still come before the one to this: then there is a file to take.
        session.Allow(kClosePatience);
        session.Call({kPortal, path.c_str(), kRequest}, "Close", &ignored, "");
        session.Allow(milliseconds{0});
        session.WaitUntil(hasCome);
    }
    if (!answer.come)
        *problem = "no answer, perhaps since nobody was there to allow it";
    else if (answer.code != 0)
        *problem = answer.code == 1 ? "the user has refused it" : "it was refused";
    *uri = answer.uri;
    return answer.come && answer.code == 0;
}

// The path of a file on this machine; "" when the address is none of such a file.
std::string PathOf(const std::string& uri) {
    constexpr std::string_view kScheme = "file://";
    constexpr std::string_view kHost = "localhost";
    if (!uri.starts_with(kScheme))
        return "";
    std::string_view rest = std::string_view(uri).substr(kScheme.size());
    if (rest.starts_with(kHost))
        rest.remove_prefix(kHost.size());
    std::string path;
    while (!rest.empty()) {
        std::size_t length = 1;
        unsigned char byte = static_cast<unsigned char>(rest.front());
        if (byte == '%') {
            constexpr int kHexadecimal = 16;
            length = 3;
            const char* digits = rest.data() + 1;
            const char* end = rest.data() + std::min(length, rest.size());
            if (std::from_chars(digits, end, byte, kHexadecimal).ptr != rest.data() + length)
                return "";
        }
        if (byte == '\0')
            return "";
        path += static_cast<char>(byte);
        rest.remove_prefix(length);
    }
    return path.starts_with('/') ? path : "";
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Opens the file and removes its name: nobody else is to find the picture, whatever becomes of it here. A
// link, and what is not an ordinary file of this user, was not made for us, and stays.
File TakeFile(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return nullptr;
    const std::string name = path.substr(slash + 1);
    const Descriptor folder(open(path.substr(0, slash + 1).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    Descriptor file(
        openat(folder.Get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat opened = {};
    struct stat named = {};
    if (fstat(file.Get(), &opened) != 0 || !S_ISREG(opened.st_mode) || opened.st_uid != geteuid())
        return nullptr;
    if (fstatat(folder.Get(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
        named.st_ino == opened.st_ino && named.st_dev == opened.st_dev)
        unlinkat(folder.Get(), name.c_str(), 0);
    return File(fdopen(file.Release(), "rb"));
}

struct Png : png_image {
    Png() : png_image{} { version = PNG_IMAGE_VERSION; }
    ~Png() { png_image_free(this); }
    Png(const Png&) = delete;
    Png& operator=(const Png&) = delete;
};

bool Decode(std::FILE* file, Photograph* picture, std::string* problem) {
    Png png;
    if (png_image_begin_read_from_stdio(&png, file) == 0) {
        *problem = std::string("its file: ") + png.message;
        return false;
    }
    if (!IsLikeScreen(png.width, png.height)) {
        *problem =
            "a picture of " + std::to_string(png.width) + " x " + std::to_string(png.height) + " pixels";
        return false;
    }
    png.format = PNG_FORMAT_BGRA;
    png.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
    picture->width = static_cast<int>(png.width);
    picture->height = static_cast<int>(png.height);
    picture->pixels.resize(std::size_t{4} * png.width * png.height);
    const bool done = png_image_finish_read(&png, nullptr, picture->pixels.data(), 0, nullptr) != 0;
    if (!done)
        *problem = std::string("its file: ") + png.message;
    return done;
}

// One side of an output in the picture of the desktop.
struct Span {
    int from = 0;
    int length = 0;
};

// `pixels` is what the output has itself; a part that differs from it by the rounding of places is as long.
Span FindSpan(int whole, int desktopFrom, int desktopLength, int from, int length, int pixels) {
    const double scale = static_cast<double>(whole) / desktopLength;
    const auto place = [&](int logical) {
        return static_cast<int>(std::clamp(std::lround((logical - desktopFrom) * scale), 0L, long{whole}));
    };
    Span span = {place(from), place(from + length) - place(from)};
    if (std::abs(span.length - pixels) <= 1) {
        span.from = std::max(std::min(span.from, whole - pixels), 0);
        span.length = std::min(pixels, whole);
    }
    return span;
}

// Of the `count` parts of a span, one that is a pixel at least.
Span PartOf(Span span, int i, int count) {
    const auto at = [&](int n) { return static_cast<int>(std::int64_t{n} * span.length / count); };
    return {span.from + at(i), std::max(at(i + 1) - at(i), 1)};
}

// The mean of the pixels in a part of a picture.
void Average(const Photograph& whole, Span columns, Span rows, unsigned char* to) {
    std::uint64_t sums[4] = {};
    for (std::ptrdiff_t row = rows.from; row < rows.from + rows.length; ++row) {
        const unsigned char* pixel = whole.pixels.data() + 4 * (row * whole.width + columns.from);
        for (int column = 0; column < columns.length; ++column)
            for (std::uint64_t& sum : sums)
                sum += *pixel++;
    }
    const std::uint64_t count = static_cast<std::uint64_t>(rows.length) * columns.length;
    for (const std::uint64_t sum : sums)
        *to++ = static_cast<unsigned char>(sum / count);
}

// Brings a part of a picture to a size.
Photograph Resized(const Photograph& whole, Span columns, Span rows, int width, int height) {
    Photograph part;
    part.width = width;
    part.height = height;
    const std::size_t pitch = std::size_t{4} * width;
    part.pixels.resize(pitch * height);
    for (int y = 0; y < height; ++y) {
        unsigned char* to = part.pixels.data() + pitch * y;
        const Span below = PartOf(rows, y, height);
        if (columns.length == width && below.length == 1) {
            const std::ptrdiff_t first = std::ptrdiff_t{below.from} * whole.width + columns.from;
            std::copy_n(whole.pixels.data() + 4 * first, pitch, to);
            continue;
        }
        for (int x = 0; x < width; ++x)
            Average(whole, PartOf(columns, x, width), below, to + std::ptrdiff_t{4} * x);
    }
    return part;
}

// Leaves of the desktop's picture what the output shows. A picture in the output's size is already that: no
// desktop with more outputs is so small.
bool CutOut(const Place& desktop, const Place& output, int width, int height, Photograph* picture,
            std::string* problem) {
    Photograph& whole = *picture;
    if (whole.width == width && whole.height == height)
        return true;
    // Both sides have one scale, but for the rounding of each to a pixel.
    const std::int64_t across = std::int64_t{whole.width} * desktop.height;
    const std::int64_t down = std::int64_t{whole.height} * desktop.width;
    if (std::abs(across - down) <= desktop.width + desktop.height && desktop.width > 0 &&
        desktop.height > 0 && width > 0 && height > 0) {
        const Span columns = FindSpan(whole.width, desktop.x, desktop.width, output.x, output.width, width);
        const Span rows = FindSpan(whole.height, desktop.y, desktop.height, output.y, output.height, height);
        if (columns.length > 0 && rows.length > 0) {
            whole = Resized(whole, columns, rows, width, height);
            return true;
        }
    }
    *problem = "its picture of " + std::to_string(whole.width) + " x " + std::to_string(whole.height) +
               " pixels is not this desktop's";
    return false;
}

bool FetchFromPortal(Photograph* picture, std::string* problem) {
    std::string uri;
    if (!AskPortal(&uri, problem))
        return false;
    const File file = TakeFile(PathOf(uri));
    if (file == nullptr) {
        *problem = "no file of this user: " + uri;
        return false;
    }
    return Decode(file.get(), picture, problem);
}

} // namespace

bool PhotographByPortal(const Place& desktop, const Place& output, int width, int height, Photograph* picture,
                        std::string* problem) {
    return Attempt("the screenshot portal", picture, problem, [&] {
        return FetchFromPortal(picture, problem) && CutOut(desktop, output, width, height, picture, problem);
    });
}

} // namespace wayland
