// The loop, the lights and the defaults of the environment; matrices and vectors.
#include "fakes/fake_win32.h"
#include "image/light.h"
#include "package/package_data.h"
#include "platform/clock.h"
#include "platform/threads.h"
#include "render/vectors.h"
#include "unit/recorded_device.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>

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
    for (FXLight& light : lights)
        EXPECT_EQ(env.RegisterLight(&light), &light != &lights[8]);
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

FXMatrix Numbered() {
    FXMatrix m;
    std::iota(std::begin(m.m), std::end(m.m), 0.1f);
    return m;
}

TEST(Matrix, MovesAPoint) {
    const float vector[3] = {5, 6, 7};
    FXMatrix moved, scaled;
    moved.SetMove(vector);
    scaled.SetScale(vector);
    const struct {
        const char* what;
        std::function<void(FXMatrix&)> set;
        float expected[3];
    } kCases[] = {{"identity", [](FXMatrix& m) { m.SetIdentity(); }, {2, 3, 4}},
                  {"flip z", [](FXMatrix& m) { m.SetFlipZ(); }, {2, 3, -4}},
                  // The second factor acts first.
                  {"scale * move", [&](FXMatrix& m) { m.Multiply(&scaled, &moved); }, {35, 54, 77}},
                  {"x 90", [](FXMatrix& m) { m.SetRotateX(90); }, {2, -4, 3}},
                  {"y 90", [](FXMatrix& m) { m.SetRotateY(90); }, {-4, 3, 2}},
                  {"z -30", [](FXMatrix& m) { m.SetRotateZ(-30); }, {0.232051f, 3.598076f, 4}}};
    for (const auto& c : kCases) {
        FXMatrix m = Numbered(); // nothing of what was there may remain
        c.set(m);
        for (int row = 0; row < 3; ++row) // (2, 3, 4) as OpenGL transforms it
            EXPECT_NEAR(*m.M(0, row) * 2 + *m.M(1, row) * 3 + *m.M(2, row) * 4 + *m.M(3, row),
                        c.expected[row], 5e-4f)
                << c.what << " " << row;
        for (int column = 0; column < 4; ++column)
            EXPECT_EQ(*m.M(column, 3), column == 3 ? 1.0f : 0.0f) << c.what;
    }
    FXMatrix m;
    m.SetRotateX(180);
    EXPECT_NEAR(*m.M(1, 2), 9.27e-5f, 1e-6f) << "degrees are a little short";
}

TEST(Matrix, RecordIsReadWholeOrNotAtAll) {
    const FXMatrix identity;
    FXMatrix written = Numbered(), read;
    FXPackageData data;
    data.InitData(reinterpret_cast<unsigned char*>(written.m), 64);
    read.LoadC(nullptr, &data);
    EXPECT_TRUE(read.Compare(&written) && data.left == 0);
    data.InitData(reinterpret_cast<unsigned char*>(written.m), 63);
    read.LoadC(nullptr, &data);
    EXPECT_TRUE(read.Compare(&identity) && data.left == 63) << "nothing consumed";
}

TEST(Vectors, AreInterpolated) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const std::array<float, 4> kCases[] = {{2, 4, 2, 6},
                                           {1e8f, 0.1f, 1, 0.1f},
                                           {0.1f, kInfinity, 0, 0.1f},
                                           {kInfinity, kInfinity, 0.5f, kInfinity}};
    for (const auto& [from, to, t, expected] : kCases) {
        const float a[4] = {from, from * 2, from * 3, from * 4}, b[4] = {to, to * 2, to * 3, to * 4};
        float between[4];
        fxVec4fCombineP(between, a, b, t);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(between[i], expected * static_cast<float>(i + 1)) << t;
    }
}

} // namespace
