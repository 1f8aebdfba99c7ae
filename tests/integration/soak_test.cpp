// The show for a long time, on X11 and on Wayland at once, by a clock that runs 200 times as fast: nothing
// that it keeps grows. Half an hour of the show by default; three days: TAMBLOR_SOAK_HOURS=72 soak_test
#include "integration/compositor.h"
#include "integration/spied_saver.h"

#include <X11/extensions/XRes.h>

#include <chrono>
#include <cstdio>
#include <ranges>
#include <span>
#include <thread>

namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryIsOurs = false; // the sanitizer keeps what is freed
#else
constexpr bool kMemoryIsOurs = true;
#endif

constexpr int kSpeed = 200;
constexpr auto kPerStep = 30ms;
constexpr std::uint32_t kStep = kSpeed * kPerStep.count(); // milliseconds of the show

// Numbers by what they are called.
using Sample = std::map<std::string, double>;

void AddProcess(const std::string& prefix, pid_t process, Sample* sample) {
    const std::string folder = "/proc/" + std::to_string(process) + "/";
    std::ifstream status(folder + "status");
    for (std::string word; status >> word;) {
        double number = 0;
        if ((word == "RssAnon:" || word == "Threads:") && status >> number)
            (*sample)[prefix + (word == "Threads:" ? "threads" : "memory KiB")] = number;
    }
    std::error_code failed;
    (*sample)[prefix + "files"] =
        static_cast<double>(std::distance(std::filesystem::directory_iterator(folder + "fd", failed), {}));
    std::ifstream maps(folder + "maps");
    (*sample)[prefix + "mappings"] =
        static_cast<double>(std::count(std::istreambuf_iterator<char>(maps), {}, '\n'));
}

// What clients have at the X server; the test's own has the same all the time.
void AddXResources(Display* display, Sample* sample) {
    int clientCount = 0;
    XResClient* clients = nullptr;
    XResQueryClients(display, &clientCount, &clients);
    for (const XResClient& client : std::span(clients, static_cast<std::size_t>(clientCount))) {
        ++(*sample)["X clients"];
        int typeCount = 0;
        XResType* types = nullptr;
        XResQueryClientResources(display, client.resource_base, &typeCount, &types);
        for (const XResType& type : std::span(types, static_cast<std::size_t>(typeCount)))
            (*sample)["X resources"] += type.count;
        XFree(types);
        unsigned long bytes = 0;
        XResQueryClientPixmapBytes(display, client.resource_base, &bytes);
        (*sample)["X pixmaps KiB"] += static_cast<double>(bytes) / 1024;
    }
    XFree(clients);
}

// The saver with its spy, and what was seen of it.
class SoakedShow {
public:
    explicit SoakedShow(const char* whose) : name(whose) { spy_->waitsForClock = 1; }

    // A frame was shown that was drawn for the time that the clock has now.
    bool IsDrawn() const { return spy_->tick == SaverProcess::kStartMs + now_; }
    void Step() { saver.SetClock(now_ += kStep); }
    // False: no frame comes.
    bool Await() {
        const auto end = SteadyClock::now() + 100s;
        while (!IsDrawn() && SteadyClock::now() < end && saver.Running())
            usleep(500);
        return IsDrawn();
    }

    void Look(double hours, const Sample& others) {
        Sample sample = others;
        AddProcess("", saver.Id(), &sample);
        sample["heap KiB"] = static_cast<double>(spy_->heap / 1024);
        sample["textures"] = spy_->textures;
        sample["uploads"] = spy_->uploads;
        sample["Wayland objects"] = spy_->proxy;
        samples_.push_back(sample);
        std::printf("%s, %.1f h, %u frames:", name.c_str(), hours, spy_->frames.load());
        for (const auto& [what, number] : sample)
            std::printf(" %s %.0f,", what.c_str(), number);
        std::printf("\n");
        std::fflush(stdout);
    }
    // The last third against the first one, which is past the first cycles. It never has more of what is
    // counted; memory comes and goes with the frames that the driver has in hand, so its least counts.
    void ExpectFlat() const {
        const std::size_t third = samples_.size() / 3;
        ASSERT_GT(third, 0u);
        const std::span all(samples_);
        for (const auto& [what, number] : samples_.back()) {
            const auto early = Range(all.first(third), what), late = Range(all.last(third), what);
            const bool isMemory = what.ends_with("KiB");
            if (!kMemoryIsOurs && (isMemory || what.ends_with("mappings")))
                continue;
            const double before = isMemory ? early.min : early.max;
            EXPECT_LE(isMemory ? late.min : late.max, before + RoomOf(what)) << name << ": " << what;
        }
        EXPECT_GT(samples_.back().at("textures"), 0) << name << ": the spy sees nothing";
    }

    const std::string name;
    SpiedSaver saver;

private:
    // For what allocators and drivers keep for later: they come to their most within hours, not minutes. A
    // driver takes a buffer more when the compositor has all others.
    static double RoomOf(const std::string& what) {
        constexpr std::pair<const char*, double> kRooms[] = {
            {"heap KiB", 2048}, {"memory KiB", 4096}, {"mappings", 32}, {"Wayland objects", 2}};
        for (const auto& [kind, room] : kRooms)
            if (what.ends_with(kind))
                return room;
        return 0;
    }
    static std::ranges::minmax_result<double> Range(std::span<const Sample> samples,
                                                    const std::string& what) {
        const auto numberOf = [&](const Sample& sample) { return sample.at(what); };
        return std::ranges::minmax(samples | std::views::transform(numberOf));
    }

    PlatformSpy* const spy_ = saver.spy;
    std::uint32_t now_ = 0; // on its clock, since its start
    std::vector<Sample> samples_;
};

TEST(Soak, LeavesMemoryAndHandlesAsTheyWere) {
    const char* const wanted = std::getenv("TAMBLOR_SOAK_HOURS");
    const double hours = wanted != nullptr ? std::atof(wanted) : 0.5;
    ASSERT_GT(hours, 0);
    VirtualDisplay display(200, 150);
    ASSERT_NE(display.connection, nullptr);
    XSetScreenSaver(display.connection, 0, 0, DontPreferBlanking, DontAllowExposures); // the server's own
    Compositor compositor({{200, 150}}, "xwayland disable");
    ASSERT_TRUE(compositor.ready) << compositor.server.folder.Read("errors");
    SoakedShow onX11("X11"), onWayland("Wayland");
    const std::vector<SoakedShow*> shows = {&onX11, &onWayland};
    compositor.server.Offer(&onWayland.saver.environment);
    onX11.saver.environment["DISPLAY"] = display.Name();
    onX11.saver.Start({"/s"});
    onWayland.saver.Start({"/s"});
    const auto look = [&](double hour) {
        Sample server, atCompositor;
        AddXResources(display.connection, &server);
        onX11.Look(hour, server);
        compositor.Pump();
        AddProcess("the compositor's ", compositor.server.program.Id(), &atCompositor);
        onWayland.Look(hour, atCompositor);
    };

    constexpr int kLooks = 60;
    constexpr int kBefore = 160; // steps, as fast as they go: the cube comes, the driver takes its buffers
    constexpr double kMsPerHour = 3600000;
    const int steps = static_cast<int>(hours * kMsPerHour / kStep) / kLooks * kLooks;
    ASSERT_GT(steps, 0) << "too short";
    auto due = SteadyClock::now();
    for (int step = 1 - kBefore; step <= steps; ++step) {
        if (step > 0) {
            due = std::max(due + kPerStep, SteadyClock::now() - 1s); // a slow spell is made up for
            std::this_thread::sleep_until(due);
        }
        for (SoakedShow* show : shows) {
            ASSERT_TRUE(show->Await()) << show->name << ": " << show->saver.Errors();
            show->Step();
        }
        if (step > 0 && step % (steps / kLooks) == 0)
            look(hours * step / steps);
    }

    for (SoakedShow* show : shows) {
        ASSERT_TRUE(show->Await());
        show->ExpectFlat();
    }
    display.PressKey(XK_space);
    compositor.PressKey(KEY_SPACE);
    for (SoakedShow* show : shows) {
        EXPECT_EQ(show->saver.WaitForExit(), 0) << show->name;
        EXPECT_EQ(show->saver.Errors(), "") << show->name;
    }
}

} // namespace
