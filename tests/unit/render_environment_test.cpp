// The loop, the lights and the defaults of the environment.
#include "fakes/fake_win32.h"
#include "image/light.h"
#include "platform/clock.h"
#include "platform/threads.h"
#include "unit/recorded_device.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr double kForever = 100000;

// Counts its frames; may hold one.
struct Target : PRender {
    void OnRender(PEnv*, double time) override {
        lastTime = time;
        ++frames;
        while (hold)
            fxSleep(0.001);
    }
    bool WaitFor(int count) const {
        for (int i = 0; i < 5000 && frames < count; ++i)
            fxSleep(0.001);
        return frames >= count;
    }

    std::atomic<int> frames = 0;
    std::atomic<double> lastTime = 0;
    std::atomic<bool> hold = false;
};

class Loop : public testing::Test {
protected:
    Loop() { ResetFakeWin32(); }

    bool Locks() {
        const bool entered = fxTryLock(env_.mutex);
        if (entered)
            fxUnlock(env_.mutex);
        return entered;
    }

    RecordedDevice<> device_;
    FXGL& env_ = device_.gl;
    Target target_;
};

TEST_F(Loop, DrawsFromATenthOfASecondOnAndHoldsTheLockForAWholeFrame) {
    const double start = fxGetTime();
    target_.hold = true;
    EXPECT_TRUE(env_.StartLoop(&target_));
    ASSERT_TRUE(target_.WaitFor(1));
    EXPECT_GE(target_.lastTime - start, 0.099) << "the clock's, in whole milliseconds";
    EXPECT_FALSE(Locks());
    target_.hold = false;
    env_.StopLoop(kForever);
    EXPECT_TRUE(Locks() && env_.render == nullptr);
    EXPECT_EQ(TakeFakeCalls().back(), "wglMakeCurrent(off)") << "free between frames";
}

TEST_F(Loop, ThatDoesNotEndIsEndedAndLeavesALockBehindThatWorks) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers cannot follow a thread that is cancelled";
#endif
    target_.hold = true;
    env_.StartLoop(&target_);
    ASSERT_TRUE(target_.WaitFor(1));
    env_.StopLoop(0.02);
    EXPECT_TRUE(env_.thread == nullptr && !env_.running && Locks());
}

// A device that lists which of its slots were used, and whose first loop ends at once.
struct WatchedDevice : FXGL {
    void StopLoop(double timeout) override {
        calls += "stop ";
        FXGL::StopLoop(timeout);
    }
    void Lock(bool on) override {
        calls += on ? "lock " : "unlock ";
        FXGL::Lock(on);
    }
    void RenderLoop() override {
        if (++loops > 1)
            FXGL::RenderLoop();
    }

    std::string calls;
    std::atomic<int> loops = 0;
};

TEST_F(Loop, ThatEndedByItselfIsStartedAgainAndStoppedWithItsEnvironment) {
    auto device = std::make_unique<WatchedDevice>();
    ASSERT_TRUE(device->CreateChild(kFakeWindow));
    ASSERT_TRUE(device->StartLoop(&target_));
    ASSERT_TRUE(fxWaitThread(device->thread, 10));
    EXPECT_TRUE(device->StartLoop(&target_) && target_.WaitFor(1));
    EXPECT_EQ(device->loops, 2);
    device->calls.clear();
    device->Destroy();
    EXPECT_EQ(device->calls, "stop lock unlock ") << "through its slots";
    ASSERT_TRUE(device->CreateChild(kFakeWindow) && device->StartLoop(&target_));
    ASSERT_TRUE(target_.WaitFor(target_.frames + 1));
    device.reset();
    const int frames = target_.frames;
    fxSleep(0.02);
    EXPECT_EQ(target_.frames, frames);
}

TEST(Environment, HasPlacesForEightLights) {
    FXGL env;
    FXLight lights[9];
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(env.RegisterLight(&lights[i]));
    EXPECT_FALSE(env.RegisterLight(&lights[8]));
    EXPECT_TRUE(env.RegisterLight(&lights[7])) << "is there already";
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(env.lights[i], &lights[i]);
}

TEST(Environment, StartsWithADefaultMaterialThatADeviceForgets) {
    FXGL env;
    EXPECT_EQ(env.GetDefaultMatlib()->FindMaterial(""), env.GetDefaultMaterial());
    env.CreateChild(kFakeWindow);
    EXPECT_TRUE(env.GetDefaultMatlib()->materials.IsEmpty());
}

} // namespace
