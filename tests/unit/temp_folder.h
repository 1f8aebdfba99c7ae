// A folder of a test's own, gone with everything in it when the test ends; and bytes to put there.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

// Values as the formats store them.
inline std::string Ints(const std::vector<std::int32_t>& values) {
    return {reinterpret_cast<const char*>(values.data()), 4 * values.size()};
}

class TempFolder {
public:
    TempFolder() {
        static int made = 0;
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        std::string name = "tamblor-" + std::to_string(getpid()) + "-" + std::to_string(++made) + "-" +
                           test->test_suite_name() + "-" + test->name();
        std::ranges::replace(name, '/', '_');
        path_ = std::filesystem::path(testing::TempDir()) / name;
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::string File(const std::string& name) const { return (path_ / name).string(); }
    std::string Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(File(name), std::ios::binary) << bytes;
        return File(name);
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path path_;
};
