// A folder of a test's own, gone with everything in it when the test ends; and bytes to put there.
#pragma once

#include <gtest/gtest.h>

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
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        path_ = std::filesystem::path(testing::TempDir()) /
                ("tamblor-" + std::to_string(getpid()) + "-" + test->test_suite_name() + "-" + test->name());
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() { std::filesystem::remove_all(path_); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

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
