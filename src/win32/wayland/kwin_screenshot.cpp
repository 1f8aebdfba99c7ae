// KWin's own interface for screenshots: the picture comes through a pipe, as it is in memory.
#include "win32/wayland/screenshot_services.h"
#include "win32/wayland/session_bus.h"

#include <fcntl.h>
#include <poll.h>

#include <iterator>
#include <span>
#include <vector>

namespace wayland {

namespace {

constexpr milliseconds kPatience{3000};
constexpr Object kKwin = {"org.kde.KWin", "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2"};

// KWin's numbers of formats are QImage's. The first bit of each colour in a pixel that is read as a
// little-endian number; alpha is left out, since a screen is opaque.
struct PixelFormat {
    std::uint32_t first, last; // numbers that differ in alpha alone
    std::size_t bytes;         // of a pixel
    int red, green, blue;
    int bits; // of a colour
};
constexpr PixelFormat kFormats[] = {
    {4, 6, 4, 16, 8, 0, 8},     // RGB32, ARGB32
    {13, 13, 3, 0, 8, 16, 8},   // RGB888
    {16, 18, 4, 0, 8, 16, 8},   // RGBX8888, RGBA8888
    {19, 20, 4, 0, 10, 20, 10}, // BGR30, A2BGR30
    {21, 22, 4, 20, 10, 0, 10}, // RGB30, A2RGB30
    {25, 27, 8, 0, 16, 32, 16}, // RGBX64, RGBA64
    {29, 29, 3, 16, 8, 0, 8},   // BGR888
};

const PixelFormat* FindFormat(std::uint32_t number) {
    const auto* found = std::ranges::find_if(
        kFormats, [number](const PixelFormat& each) { return number >= each.first && number <= each.last; });
    return found == std::end(kFormats) ? nullptr : found;
}

void ConvertRow(const PixelFormat& format, const unsigned char* from, std::span<unsigned char> to) {
    const int surplus = format.bits - 8;
    for (std::size_t i = 0; i < to.size(); i += 4, from += format.bytes) {
        std::uint64_t pixel = 0;
        std::memcpy(&pixel, from, format.bytes);
        to[i] = static_cast<unsigned char>(pixel >> (format.blue + surplus));
        to[i + 1] = static_cast<unsigned char>(pixel >> (format.green + surplus));
        to[i + 2] = static_cast<unsigned char>(pixel >> (format.red + surplus));
    }
}

bool ReadAll(int pipe, const Session& session, std::span<unsigned char> to) {
    while (!to.empty()) {
        pollfd awaited = {pipe, POLLIN, 0};
        const int ready = poll(&awaited, 1, static_cast<int>(session.Left().count()));
        const ssize_t got = ready > 0 ? read(pipe, to.data(), to.size()) : ready;
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        to = to.subspan(static_cast<std::size_t>(got));
    }
    return true;
}

struct RawPicture {
    std::uint32_t width = 0, height = 0, stride = 0, format = 0;
};

RawPicture ReadRawPicture(sd_bus_message* reply) {
    RawPicture raw;
    ReadEntries<std::uint32_t>(reply, "u", [&raw](const std::string& name, std::uint32_t value) {
        const std::pair<const char*, std::uint32_t*> fields[] = {
            {"width", &raw.width}, {"height", &raw.height}, {"stride", &raw.stride}, {"format", &raw.format}};
        for (const auto& [field, to] : fields)
            if (name == field)
                *to = value;
    });
    return raw;
}

bool ReadPixels(int pipe, const Session& session, const RawPicture& raw, Photograph* picture,
                std::string* problem) {
    const PixelFormat* format = FindFormat(raw.format);
    if (format == nullptr) {
        *problem = "unknown pixel format " + std::to_string(raw.format);
        return false;
    }
    const std::size_t least = format->bytes * raw.width;
    if (!IsLikeScreen(raw.width, raw.height) || raw.stride < least || raw.stride > 2 * least + kLargestSide) {
        *problem = "a picture of " + std::to_string(raw.width) + " x " + std::to_string(raw.height) +
                   " pixels with rows of " + std::to_string(raw.stride) + " bytes";
        return false;
    }
    picture->width = static_cast<int>(raw.width);
    picture->height = static_cast<int>(raw.height);
    const std::size_t pitch = std::size_t{4} * raw.width;
    picture->pixels.assign(pitch * raw.height, 0);
    std::vector<unsigned char> row(raw.stride);
    for (std::size_t y = 0; y < raw.height; ++y) {
        if (!ReadAll(pipe, session, row)) {
            const char* what = session.Left() > milliseconds{0} ? "ends in" : "has not come further than";
            *problem = std::string("the picture ") + what + " row " + std::to_string(y) + " of " +
                       std::to_string(raw.height);
            return false;
        }
        ConvertRow(*format, row.data(), std::span(picture->pixels).subspan(pitch * y, pitch));
    }
    return true;
}

bool AskKwin(const std::string& output, Photograph* picture, std::string* problem) {
    Session session(kPatience);
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        *problem = std::strerror(errno);
        return false;
    }
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    if (!session.Open(problem))
        return false;
    const Message reply = session.Call(kKwin, "CaptureScreen", problem, "sa{sv}h", output.c_str(), 2,
                                       "native-resolution", "b", 1, "include-cursor", "b", 0, writing.Get());
    writing.Close(); // the picture ends when KWin closes its own
    return reply != nullptr &&
           ReadPixels(reading.Get(), session, ReadRawPicture(reply.get()), picture, problem);
}

} // namespace

bool PhotographByKwin(const std::string& output, Photograph* picture, std::string* problem) {
    return Attempt("KWin's screenshot", picture, problem, [&] { return AskKwin(output, picture, problem); });
}

} // namespace wayland
