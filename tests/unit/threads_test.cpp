// The render loop and the decoding thread, started and stopped thousands of times. What they share here has
// no lock, so that the thread sanitizer sees where a stop does not wait for what it stops.
#include "fakes/fake_win32.h"
#include "image/codec.h"
#include "image/picture_decoder.h"
#include "unit/recorded_device.h"
#include "unit/test_package.h"

#include <atomic>
#include <sched.h>
#include <unistd.h>

// The loop's pauses, before its first frame and between frames, a thousand times shorter.
extern "C" void WINAPI __wrap_Sleep(DWORD milliseconds) {
    usleep(milliseconds);
}

namespace {

constexpr int kTimes = 10000;
constexpr double kForever = 100000;

struct Target : PRender {
    void OnRender(PEnv*, double) override {
        ++drawn;
        ++frames;
    }
    void Await(int count) const {
        while (frames < count)
            sched_yield();
    }

    int drawn = 0; // read by the test's thread after a stop alone
    std::atomic<int> frames = 0;
};

TEST(Threads, TheLoopIsStartedAndStoppedAtAnyMoment) {
    RecordedDevice<> device;
    GLRecorder::SetNullMode(true);
    FXGL& gl = device.gl;
    Target target, other;
    for (int i = 0; i < kTimes; ++i) {
        const int before = target.drawn;
        ASSERT_TRUE(gl.StartLoop(&target));
        switch (i % 5) {
        case 0: // stopped before it has begun
            break;
        case 1: // within its first sleep, or its first frames
            usleep(static_cast<unsigned>(i / 5 % 300));
            break;
        case 2:
            target.Await(before + 2);
            break;
        case 3: // another target meanwhile
            ASSERT_TRUE(gl.StartLoop(&other));
            other.Await(other.frames + 1);
            break;
        default: // the window gets a new size, and the main thread looks in
            gl.Resize(100 + i % 7, 100);
            const FXGRAutoAct act(&gl);
            gl.SetAmbient(gl.clearColor);
        }
        gl.StopLoop(kForever);
        ASSERT_TRUE(gl.thread == nullptr && !gl.running && gl.render == nullptr);
        ASSERT_EQ(target.drawn, target.frames);
        ASSERT_EQ(other.drawn, other.frames);
        TakeFakeCalls();
    }
}

TEST(Threads, TheDecoderIsStartedAndStoppedAtAnyMoment) {
    constexpr int kPictures = 6;
    ASSERT_TRUE(fxLoadDevil());
    const TempFolder folder;
    FXPackage package;
    std::vector<TestEntry> entries;
    FXArray<int> all;
    for (int id = 1; id <= kPictures; ++id) {
        entries.push_back({id, kTga, Tga(id, 2, std::vector<std::uint32_t>(2u * id, 0xFF000000u + id))});
        all.Push(id);
    }
    LoadTestPackage(package, folder, entries);
    const auto expectPicture = [&](int id) {
        FXCanvas canvas;
        ASSERT_TRUE(canvas.CreateFromPictCN(&package, id));
        ASSERT_EQ(canvas.usedWidth, id);
        ASSERT_EQ(canvas.pixels[0], 0xFF000000u + id);
    };
    FXPictureDecoder decoder;
    for (int i = 0; i < kTimes; ++i) {
        decoder.Start(&package, all);
        ASSERT_EQ(FXPictureDecoder::Active(), &decoder);
        switch (i % 5) {
        case 0: // stopped before it has begun
            break;
        case 1:
            usleep(static_cast<unsigned>(i / 5 % 100));
            break;
        case 2: // the last first, which the thread has not come to
            expectPicture(kPictures);
            break;
        case 3: // as the scene asks
            for (int id = 1; id <= kPictures; ++id)
                expectPicture(id);
            break;
        default: // begun anew without a stop
            decoder.Start(&package, all);
            expectPicture(1 + i % kPictures);
        }
        decoder.Stop();
        ASSERT_EQ(FXPictureDecoder::Active(), nullptr);
    }
    expectPicture(1);
    fxUnloadDevil();
}

} // namespace
