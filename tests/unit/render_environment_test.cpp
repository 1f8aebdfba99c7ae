// The loop, the lights and the defaults of the environment.
#include "base/memory.h"
#include "fakes/fake_win32.h"
#include "image/light.h"
#include "platform/clock.h"
#include "platform/threads.h"
#include "unit/recorded_device.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// Counts its frames; may hold one until told to let go.
struct Target : PRender {
    void OnRender(PEnv* env, double time) override {
        NoteFakeCall("frame");
        lastEnv = env;
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
    std::atomic<PEnv*> lastEnv = nullptr;
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

TEST_F(Loop, DrawsFramesFromATenthOfASecondOnUntilItIsStopped) {
    const double start = fxGetTime();
    TakeFakeCalls();
    EXPECT_TRUE(env_.StartLoop(&target_));
    ASSERT_TRUE(target_.WaitFor(1));
    EXPECT_GE(target_.lastTime - start, 0.099) << "the clock's, in whole milliseconds";
    EXPECT_EQ(target_.lastEnv, &env_);
    ASSERT_TRUE(target_.WaitFor(3));
    env_.StopLoop(100000);
    EXPECT_TRUE(env_.render == nullptr && !env_.running);
    std::vector<std::string> expected;
    for (int i = 0; i < target_.frames; ++i)
        expected.insert(expected.end(), {"wglMakeCurrent(on)", "frame", "wglMakeCurrent(off)"});
    EXPECT_EQ(TakeFakeCalls(), expected);
    const int frames = target_.frames;
    EXPECT_TRUE(env_.StartLoop(&target_)) << "and again";
    EXPECT_TRUE(target_.WaitFor(frames + 1));
    env_.StopLoop(100000);
}

TEST_F(Loop, HoldsTheLockForAWholeFrameUnlessToldNotTo) {
    for (const bool lock : {true, false}) {
        env_.lockEachFrame = lock;
        target_.hold = true;
        target_.frames = 0;
        env_.StartLoop(&target_);
        ASSERT_TRUE(target_.WaitFor(1));
        EXPECT_NE(Locks(), lock);
        target_.hold = false;
        env_.StopLoop(100000);
        EXPECT_TRUE(Locks()) << "free between frames";
    }
}

TEST_F(Loop, ChangesItsTargetWhileItRuns) {
    Target other;
    env_.StartLoop(&target_);
    ASSERT_TRUE(target_.WaitFor(1));
    void* const thread = env_.thread;
    EXPECT_TRUE(env_.StartLoop(&other));
    EXPECT_EQ(env_.thread, thread);
    ASSERT_TRUE(other.WaitFor(1));
    const int frames = target_.frames;
    ASSERT_TRUE(other.WaitFor(3));
    EXPECT_EQ(target_.frames, frames);
    EXPECT_TRUE(env_.StartLoop(nullptr)) << "draws nothing";
    const int others = other.frames;
    fxSleep(0.02);
    EXPECT_LE(other.frames, others + 1) << "the frame that was being drawn";
    env_.StopLoop(100000);
}

TEST_F(Loop, StoppedBeforeItsFirstFrameDrawsNone) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(env_.StartLoop(&target_));
        env_.StopLoop(100000);
        EXPECT_EQ(env_.thread, nullptr);
    }
    const double start = fxGetTime();
    env_.StopLoop(0.5);
    env_.StopLoop(100000);
    EXPECT_LT(fxGetTime() - start, 0.3) << "nothing to wait for";
    fxSleep(0.12);
    EXPECT_EQ(target_.frames, 0);
}

TEST_F(Loop, IsStoppedByTheEndOfItsEnvironment) {
    auto device = std::make_unique<FXGL>();
    device->CreateChild(kFakeWindow);
    device->StartLoop(&target_);
    ASSERT_TRUE(target_.WaitFor(1));
    device.reset();
    const int frames = target_.frames;
    fxSleep(0.02);
    EXPECT_EQ(target_.frames, frames);
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

// A device whose slots say that they were used, and whose loop may end at once.
struct WatchedDevice : FXGL {
    void StopLoop(double timeout) override {
        calls += "stop " + std::to_string(static_cast<int>(timeout * 10)) + " ";
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

TEST_F(Loop, ThatEndedByItselfIsStartedAgain) {
    WatchedDevice device;
    ASSERT_TRUE(device.CreateChild(kFakeWindow));
    ASSERT_TRUE(device.StartLoop(&target_));
    ASSERT_TRUE(fxWaitThread(device.thread, 10));
    EXPECT_TRUE(device.StartLoop(&target_));
    EXPECT_TRUE(target_.WaitFor(1));
    device.StopLoop(100000);
    EXPECT_EQ(device.loops, 2);
}

TEST_F(Loop, IsStoppedAndLockedThroughItsSlots) {
    WatchedDevice device;
    device.Destroy();
    EXPECT_EQ(device.calls, "stop 5 lock unlock ");
}

TEST_F(Loop, DoesNotStartWithoutAThread) {
    fxSetAllocLimit(1);
    EXPECT_FALSE(env_.StartLoop(&target_));
    fxSetAllocLimit(0);
    env_.StopLoop(100000);
    EXPECT_EQ(target_.frames, 0);
}

TEST(Environment, HasPlacesForEightLights) {
    FXGL env;
    FXLight lights[9];
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(env.RegisterLight(&lights[i]));
    EXPECT_FALSE(env.RegisterLight(&lights[8]));
    EXPECT_TRUE(env.RegisterLight(&lights[7])) << "is there already";
    env.UnregisterLight(&lights[8]);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(env.lights[i], &lights[i]);
    env.UnregisterLight(&lights[2]);
    EXPECT_TRUE(env.RegisterLight(&lights[1]));
    EXPECT_EQ(env.lights[2], nullptr) << "one that stands before the gap stays where it is";
    EXPECT_TRUE(env.RegisterLight(&lights[8]));
    EXPECT_EQ(env.lights[2], &lights[8]);
}

TEST(Environment, StartsWithADefaultMaterialThatADeviceForgets) {
    FXGL env;
    EXPECT_EQ(env.GetDefaultMatlib()->FindMaterial(""), env.GetDefaultMaterial());
    EXPECT_TRUE(env.lockEachFrame && env.depthWrite && env.depthTest && !env.lightsOn &&
                !env.textureUnit0Bound);
    env.CreateChild(kFakeWindow);
    EXPECT_TRUE(env.GetDefaultMatlib()->materials.IsEmpty());
    EXPECT_EQ(fxglobalEnv, nullptr) << "until it is set";
    { const FXMaterial material; } // asks nobody
}

} // namespace
