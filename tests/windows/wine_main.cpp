// Runs the tests of the Windows saver; where there is no Wine it says so, and CTest counts them as skipped.
#include "windows/under_wine.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

constexpr int kSkipped = 77;

// Cases that mean nothing without pictures. CTest runs each case by itself.
bool NeedsCodec() {
    const std::string filter = testing::GTEST_FLAG(filter);
    for (const char* name : {"Frames.", "PreviewInPane.Shows", "FullScreen.TheTrace"})
        if (filter.rfind(name, 0) == 0)
            return true;
    return false;
}

class FreshWine : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override { EndWine(); }
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    if (argc != 4) {
        std::fputs("usage: wine_test [--gtest_...] BUILDFOLDER WINE WINESERVER\n", stderr);
        return 1;
    }
    if (!ChooseWine(argv[1], argv[2], argv[3])) {
        std::printf(
            "skipped: no Wine here runs %s/bin/tamb.scr (Debian: wine64 for the 64-bit one, wine32 for the "
            "32-bit one)\n",
            argv[1]);
        return kSkipped;
    }
    if (NeedsCodec() && !std::filesystem::exists(WindowsBuild("tests/codec/devil.dll"))) {
        std::printf("skipped: no codec for %s/bin/tamb.scr (Debian: wine64-tools and libwine-dev make the "
                    "64-bit one)\n",
                    argv[1]);
        return kSkipped;
    }
    const std::string trouble = PrepareWine();
    if (!trouble.empty()) {
        std::fprintf(stderr, "%s\n", trouble.c_str());
        return 1;
    }
    testing::UnitTest::GetInstance()->listeners().Append(new FreshWine);
    return RUN_ALL_TESTS();
}
