// The loop, the lights and the defaults of the environment.
#include "base/memory.h"
#include "env/drawable.h"
#include "fakes/fake_win32.h"
#include "image/light.h"
#include "platform/clock.h"
#include "platform/threads.h"
#include "unit/recorded_device.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

namespace {

// Counts its frames, and looks at what holds while one is drawn.
struct Target : PRender {
    void OnRender(PEnv* env, double time) override {
        NoteFakeCall("frame");
        ++frames;
        lastEnv = env;
        lastTime = time;
        while (stuck)
            fxSleep(0.001);
        inFrame = true;
        while (hold)
            fxSleep(0.001);
        inFrame = false;
    }
    bool WaitFor(int count) const {
        for (int i = 0; i < 5000 && frames < count; ++i)
            fxSleep(0.001);
        return frames >= count;
    }

    std::atomic<int> frames = 0;
    std::atomic<PEnv*> lastEnv = nullptr;
    std::atomic<double> lastTime = 0;
    std::atomic<bool> stuck = false;
    std::atomic<bool> hold = false;
    std::atomic<bool> inFrame = false;
};

class Loop : public testing::Test {
protected:
    Loop() { ResetFakeWin32(); }

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
    const int frames = target_.frames;
    EXPECT_EQ(env_.render, nullptr);
    EXPECT_FALSE(env_.running);
    const std::vector<std::string> calls = TakeFakeCalls();
    ASSERT_EQ(calls.size(), 3u * static_cast<unsigned>(frames));
    for (std::size_t i = 0; i < calls.size(); i += 3) {
        EXPECT_EQ(calls[i], "wglMakeCurrent(on)");
        EXPECT_EQ(calls[i + 1], "frame");
        EXPECT_EQ(calls[i + 2], "wglMakeCurrent(off)");
    }
    EXPECT_TRUE(env_.StartLoop(&target_)) << "and again";
    EXPECT_TRUE(target_.WaitFor(frames + 1));
    env_.StopLoop(100000);
}

TEST_F(Loop, HoldsTheLockForAWholeFrameUnlessToldNotTo) {
    for (const bool lock : {true, false}) {
        env_.lockEachFrame = lock;
        target_.hold = true;
        env_.StartLoop(&target_);
        while (!target_.inFrame)
            fxSleep(0.001);
        const bool entered = fxTryLock(env_.mutex);
        EXPECT_EQ(entered, !lock);
        if (entered)
            fxUnlock(env_.mutex);
        target_.hold = false;
        env_.StopLoop(100000);
        EXPECT_TRUE(fxTryLock(env_.mutex)) << "free between frames";
        fxUnlock(env_.mutex);
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
    target_.stuck = true;
    env_.StartLoop(&target_);
    ASSERT_TRUE(target_.WaitFor(1));
    env_.StopLoop(0.02);
    EXPECT_EQ(env_.thread, nullptr);
    EXPECT_FALSE(env_.running);
    ASSERT_TRUE(fxTryLock(env_.mutex));
    fxUnlock(env_.mutex);
}

TEST_F(Loop, DoesNotStartWithoutAThread) {
    fxSetAllocLimit(1);
    EXPECT_FALSE(env_.StartLoop(&target_));
    fxSetAllocLimit(0);
    env_.StopLoop(100000);
    EXPECT_EQ(target_.frames, 0);
}

using Environment = Loop;

TEST_F(Environment, HasPlacesForEightLights) {
    FXLight lights[9];
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(env_.RegisterLight(&lights[i]));
    EXPECT_FALSE(env_.RegisterLight(&lights[8]));
    EXPECT_TRUE(env_.RegisterLight(&lights[7])) << "is there already";
    env_.UnregisterLight(&lights[8]);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(env_.lights[i], &lights[i]);
    env_.UnregisterLight(&lights[2]);
    EXPECT_EQ(env_.lights[2], nullptr);
    EXPECT_TRUE(env_.RegisterLight(&lights[1]));
    EXPECT_EQ(env_.lights[2], nullptr) << "one that stands before the gap stays where it is";
    EXPECT_TRUE(env_.RegisterLight(&lights[8]));
    EXPECT_EQ(env_.lights[2], &lights[8]);
}

TEST_F(Environment, StartsWithADefaultMaterialThatADeviceForgets) {
    FXGL fresh;
    EXPECT_EQ(fresh.GetDefaultMatlib()->materials.count, 1);
    EXPECT_EQ(fresh.GetDefaultMatlib()->materials[0], fresh.GetDefaultMaterial());
    EXPECT_EQ(fresh.GetDefaultMaterial()->diffuse[3], 1.0f);
    EXPECT_TRUE(fresh.lockEachFrame && fresh.depthWrite && fresh.depthTest);
    EXPECT_FALSE(fresh.lightsOn || fresh.textureUnit0Bound || fresh.textureUnit1Bound || fresh.cullFront ||
                 fresh.cullBack || fresh.testingMaterial || fresh.enlarged || fresh.npot);
    EXPECT_TRUE(env_.GetDefaultMatlib()->materials.IsEmpty());
    FXMaterial added;
    env_.AddMaterial(&added);
    EXPECT_EQ(env_.GetDefaultMatlib()->FindMaterial(""), &added);
    env_.GetDefaultMatlib()->RemoveMaterial(&added);
}

TEST(GlobalEnvironment, IsTheLastOneSet) {
    EXPECT_EQ(fxglobalEnv, nullptr);
    { const FXMaterial material; } // asks nobody
    FXGL a, b;
    fxSetEnv(&a);
    fxSetEnv(&b);
    EXPECT_EQ(fxglobalEnv, &b);
    fxSetEnv(nullptr);
}

} // namespace
