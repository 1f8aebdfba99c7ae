// The show for a long time, on X11 and on Wayland at once, by a clock that runs 200 times as fast: nothing
// that it keeps grows, and at the end its stages and turns are where they are to be. Half an hour of the show
// by default; three days: TAMBLOR_SOAK_HOURS=72 soak_test
#include "integration/compositor.h"
#include "integration/saver_process.h"
#include "integration/soak_spy.h"
#include "scene/show.h"

#include <X11/extensions/XRes.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <numeric>
#include <optional>
#include <span>
#include <sys/uio.h>
#include <thread>

#pragma GCC diagnostic ignored "-Winvalid-offsetof" // the compiler knows where they are all the same

namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryIsOurs = false; // the sanitizer keeps what is freed
#else
constexpr bool kMemoryIsOurs = true;
#endif

constexpr int kStages = 5;
constexpr int kSpeed = 200;
constexpr auto kPerStep = 30ms;
// Of the show, milliseconds: 6 seconds on average, none as long as the shortest run of a phaser, which begins
// a run anew where it has missed a whole one.
constexpr std::uint32_t kSteps[] = {5370, 6630, 5890, 6110, 7300, 4700, 6030, 5970};
static_assert(std::accumulate(std::begin(kSteps), std::end(kSteps), 0u) ==
              std::size(kSteps) * kSpeed * kPerStep.count());
constexpr std::uint32_t kExactStep = 500;

// A phaser that runs for ever, by where it lies in the executable.
struct Turn {
    const char* name;
    const char* object; // as the linker names it
    std::size_t at;     // in that object
};
constexpr Turn kTurns[] = {
    {"rays", "_ZN4show13phase_sun_rotE", 0},
    {"shell 1, x", "_ZN4show6planetE", offsetof(FXPlanet, rot1[1])},
    {"shell 2, x", "_ZN4show6planetE", offsetof(FXPlanet, rot1[2])},
    {"shell 3, y", "_ZN4show6planetE", offsetof(FXPlanet, rot2[3])},
    {"pulse 1", "_ZN4show6planetE", offsetof(FXPlanet, pulse[1])},
    {"pulse 2", "_ZN4show6planetE", offsetof(FXPlanet, pulse[2])},
    {"pulse 3", "_ZN4show6planetE", offsetof(FXPlanet, pulse[3])},
    {"medallion", "_ZN4show3gadE", offsetof(FXOrinGadget, spin)},
    {"cube, x", "_ZN4show4demoE", offsetof(FXDemoGadget, spinX)},
    {"cube, y", "_ZN4show4demoE", offsetof(FXDemoGadget, spinY)},
    {"cube's path", "_ZN4show4demoE", offsetof(FXDemoGadget, travel)},
};

std::uintptr_t AddressOf(const std::string& name) {
    static const std::map<std::string, std::uintptr_t> all = [] {
        std::map<std::string, std::uintptr_t> found;
        std::FILE* const list = popen(NM_EXE " --defined-only " TAMBLOR_EXE, "r");
        char symbol[512];
        for (unsigned long address = 0; std::fscanf(list, "%lx %*s %511s", &address, symbol) == 2;)
            found[symbol] = address;
        pclose(list);
        return found;
    }();
    return all.at(name);
}

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

// What all other clients have at the X server.
void AddXResources(Display* display, Sample* sample) {
    const XID own = XAllocID(display);
    int clientCount = 0;
    XResClient* clients = nullptr;
    XResQueryClients(display, &clientCount, &clients);
    for (const XResClient& client : std::span(clients, static_cast<std::size_t>(clientCount))) {
        if ((own & ~static_cast<XID>(client.resource_mask)) == client.resource_base)
            continue;
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
    explicit SoakedShow(const char* name) : name_(name) {
        saver.environment["TAMBLOR_SOAK"] = saver.data.Write("soak", std::string(sizeof(SoakSpy), '\0'));
        saver.environment["LD_PRELOAD"] = SOAK_SPY;
        saver.environment["ASAN_OPTIONS"] += ":verify_asan_link_order=0";
        const int file = open(saver.environment["TAMBLOR_SOAK"].c_str(), O_RDWR);
        spy_ = static_cast<SoakSpy*>(
            mmap(nullptr, sizeof(SoakSpy), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        close(file);
    }
    ~SoakedShow() {
        saver.Kill();
        munmap(spy_, sizeof(SoakSpy));
    }
    SoakedShow(const SoakedShow&) = delete;
    SoakedShow& operator=(const SoakedShow&) = delete;

    const std::string& Name() const { return name_; }
    // A frame was shown that was drawn for the time that the clock has now.
    bool IsDrawn() const { return std::atomic_ref(spy_->tick) == SaverProcess::kStartMs + now_; }
    void Step(std::uint32_t milliseconds) {
        now_ += milliseconds;
        saver.SetClock(now_);
    }
    void StepOn() {
        const int before = std::exchange(stage_, Stage());
        cycles += before == show::kReturning && stage_ == show::kDissolving;
        Step(kSteps[stepCount_++ % std::size(kSteps)]);
    }
    // False: no frame comes.
    bool StepAndWait(std::uint32_t milliseconds) {
        Step(milliseconds);
        return Await();
    }
    bool Await() {
        const auto end = SteadyClock::now() + 100s;
        while (!IsDrawn() && SteadyClock::now() < end && saver.Running())
            usleep(500);
        return IsDrawn();
    }

    int Stage() const { return Read<int>(AddressOf("_ZN4show5stageE")); }
    // How many steps each stage lasts, of a cycle that begins when the desktop has come back.
    std::vector<int> CountSteps() {
        std::vector<int> counted(kStages);
        while (Stage() != show::kReturning && StepAndWait(2000))
            continue;
        while (Stage() == show::kReturning && StepAndWait(kExactStep))
            continue;
        int before = -1;
        for (int stage = Stage(); stage >= before; stage = Stage()) {
            ++counted[static_cast<std::size_t>(stage)];
            before = stage;
            if (!StepAndWait(kExactStep))
                return {};
        }
        return counted;
    }

    double StartOf(const Turn& turn) const { return ReadField<double>(turn, offsetof(FXPhaser, start)); }
    // Since then it has made whole turns, and is where it should be in this one.
    void ExpectExact(const Turn& turn, double startBefore) const {
        constexpr double kNear = 1e-5;
        const double time = (SaverProcess::kStartMs + now_) / 1000.0;
        const double duration = ReadField<double>(turn, offsetof(FXPhaser, duration));
        const double start = StartOf(turn);
        const double turns = (start - startBefore) / duration;
        const double phase = static_cast<double>(ReadField<float>(turn, offsetof(FXPhaser, phase)));
        EXPECT_NEAR(turns, std::round(turns), kNear) << name_ << ", " << turn.name;
        EXPECT_NEAR(phase, (time - start) / duration, kNear) << name_ << ", " << turn.name;
        EXPECT_TRUE(phase >= 0 && phase < 1) << name_ << ", " << turn.name << ": " << phase;
    }

    void Look(const Sample& others) {
        Sample sample = others;
        AddProcess("", saver.Id(), &sample);
        sample["heap KiB"] = static_cast<double>(std::atomic_ref(spy_->heap).load() / 1024);
        sample["textures"] = std::atomic_ref(spy_->textures);
        sample["uploads"] = std::atomic_ref(spy_->uploads);
        sample["lists"] = std::atomic_ref(spy_->lists);
        sample["Wayland objects"] = std::atomic_ref(spy_->proxy);
        samples_.push_back(sample);
    }
    void Print(double hours) const {
        std::printf("%s, %.1f h, %u frames, %d cycles:", name_.c_str(), hours,
                    std::atomic_ref(spy_->frames).load(), cycles);
        for (const auto& [what, number] : samples_.back())
            std::printf(" %s %.0f,", what.c_str(), number);
        std::printf("\n");
        std::fflush(stdout);
    }
    // The last third against the first one, which is past the first cycles. Of what is counted, it has no
    // more at any time; memory comes and goes with the frames that the driver has in hand, so its least
    // counts.
    void ExpectFlat() const {
        const std::size_t third = samples_.size() / 3;
        ASSERT_GT(third, 0u);
        const std::span all(samples_);
        for (const auto& [what, number] : samples_.back()) {
            const auto early = Range(all.first(third), what), late = Range(all.last(third), what);
            const bool isMemory = what.ends_with("KiB");
            if (isMemory)
                std::printf("%s, %s: %.0f to %.0f, then %.0f to %.0f\n", name_.c_str(), what.c_str(),
                            early.first, early.second, late.first, late.second);
            if (!kMemoryIsOurs && (isMemory || what.ends_with("mappings")))
                continue;
            const double before = isMemory ? early.first : early.second;
            EXPECT_LE(isMemory ? late.first : late.second, before + RoomOf(what)) << name_ << ": " << what;
        }
        EXPECT_GT(samples_.back().at("textures"), 0) << name_ << ": the spy sees nothing";
        EXPECT_EQ(samples_.back().at("lists"), 0) << name_;
    }

    SaverProcess saver;
    int cycles = 0; // that ended while it was soaked
    std::vector<int> lengths;
    std::vector<double> starts;

private:
    // For what allocators and drivers keep for later: they come to their most within hours, not minutes.
    static double RoomOf(const std::string& what) {
        constexpr std::pair<const char*, double> kRooms[] = {
            {"heap KiB", 2048}, {"memory KiB", 4096}, {"mappings", 32}};
        for (const auto& [name, room] : kRooms)
            if (what.ends_with(name))
                return room;
        return 0;
    }
    static std::pair<double, double> Range(std::span<const Sample> samples, const std::string& what) {
        std::pair<double, double> range = {samples.front().at(what), samples.front().at(what)};
        for (const Sample& sample : samples) {
            range.first = std::min(range.first, sample.at(what));
            range.second = std::max(range.second, sample.at(what));
        }
        return range;
    }

    template <class T> T Read(std::uintptr_t address) const {
        if (!base_) {
            std::ifstream maps("/proc/" + std::to_string(saver.Id()) + "/maps");
            for (std::string line; !base_ && std::getline(maps, line);)
                if (line.ends_with("/tamblor"))
                    base_ = std::stoul(line, nullptr, 16);
        }
        T value = {};
        iovec here = {&value, sizeof value};
        iovec there = {reinterpret_cast<void*>(base_.value_or(0) + address), sizeof value};
        EXPECT_EQ(process_vm_readv(saver.Id(), &here, 1, &there, 1, 0), static_cast<ssize_t>(sizeof value));
        return value;
    }
    template <class T> T ReadField(const Turn& turn, std::size_t field) const {
        return Read<T>(AddressOf(turn.object) + turn.at + field);
    }

    const std::string name_;
    SoakSpy* spy_ = nullptr;
    std::uint32_t now_ = 0; // on its clock, since its start
    std::size_t stepCount_ = 0;
    int stage_ = -1; // a step ago
    mutable std::optional<std::uintptr_t> base_;
    std::vector<Sample> samples_;
};

void ExpectStages(const SoakedShow& show, const std::vector<int>& lengths) {
    ASSERT_EQ(lengths.size(), std::size_t{kStages}) << show.Name();
    const auto seconds = [&](int stage) {
        return lengths[static_cast<std::size_t>(stage)] * kExactStep / 1000.0;
    };
    EXPECT_EQ(seconds(show::kDissolving), 2) << show.Name();
    EXPECT_NEAR(seconds(show::kBurning), 13, 2) << show.Name() << ": it burns at random";
    EXPECT_EQ(seconds(show::kPause), 20) << show.Name();
    EXPECT_EQ(seconds(show::kReturning), 2) << show.Name();
    EXPECT_EQ(lengths[show::kRebuilding], show.lengths[show::kRebuilding]) << show.Name();
}

TEST(Soak, LeavesMemoryHandlesAndPhasesAsTheyWere) {
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
    onX11.saver.Start(display, {"/s"});
    onWayland.saver.Start({"/s"});
    const auto look = [&] {
        Sample server, atCompositor;
        AddXResources(display.connection, &server);
        onX11.Look(server);
        compositor.Pump();
        AddProcess("the compositor's ", compositor.server.program.Id(), &atCompositor);
        onWayland.Look(atCompositor);
    };

    for (SoakedShow* show : shows) {
        ASSERT_TRUE(show->Await()) << show->Name() << ": " << show->saver.Errors();
        ASSERT_FALSE(show->CountSteps().empty()); // the cube comes in the first cycle
        show->lengths = show->CountSteps();
        ExpectStages(*show, show->lengths);
        for (const Turn& turn : kTurns)
            show->starts.push_back(show->StartOf(turn));
    }

    constexpr int kLooks = 60, kLinesPrinted = 6;
    constexpr double kMsPerHour = 3600000;
    const int steps = static_cast<int>(hours * kMsPerHour / (kSpeed * kPerStep.count())) / kLooks * kLooks;
    ASSERT_GT(steps, 0) << "too short";
    const auto begun = SteadyClock::now();
    auto due = begun;
    for (int step = 1; step <= steps; ++step) {
        due = std::max(due + kPerStep, SteadyClock::now() - 1s); // a slow spell is made up for
        std::this_thread::sleep_until(due);
        for (SoakedShow* show : shows) {
            ASSERT_TRUE(show->Await()) << show->Name() << ": " << show->saver.Errors();
            show->StepOn();
        }
        if (step % (steps / kLooks) != 0)
            continue;
        look();
        for (const SoakedShow* show : shows)
            if (step % (steps / kLinesPrinted) == 0)
                show->Print(hours * step / steps);
    }
    const double took = std::chrono::duration<double>(SteadyClock::now() - begun).count();
    std::printf("%.1f hours in %.1f minutes, %.0f times their speed\n", hours, took / 60,
                hours * 3600 / took);

    for (SoakedShow* show : shows) {
        ASSERT_TRUE(show->Await());
        for (std::size_t i = 0; i < std::size(kTurns); ++i)
            show->ExpectExact(kTurns[i], show->starts[i]);
        ExpectStages(*show, show->CountSteps());
        show->ExpectFlat();
        EXPECT_GE(show->cycles, 3) << show->Name();
    }
    EXPECT_EQ(onX11.lengths[show::kRebuilding], onWayland.lengths[show::kRebuilding]);
    display.PressKey(XK_space);
    compositor.PressKey(KEY_SPACE);
    for (SoakedShow* show : shows) {
        EXPECT_EQ(show->saver.WaitForExit(), 0) << show->Name();
        EXPECT_EQ(show->saver.Errors(), "") << show->Name();
    }
}

} // namespace
