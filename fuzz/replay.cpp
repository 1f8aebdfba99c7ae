// In the place of the fuzzer: hands each file of the folders that are named to the target, and ends with it
// where one is a finding. The first folder, the target's corpus, has files.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size);

int main(int count, char** words) {
    std::size_t replayed = 0;
    for (int i = 1; i < count; ++i) {
        std::vector<std::filesystem::path> files;
        if (i == 1 || std::filesystem::exists(words[i]))
            for (const auto& entry : std::filesystem::directory_iterator(words[i]))
                files.push_back(entry.path());
        std::ranges::sort(files);
        for (const std::filesystem::path& file : files) {
            std::printf("%s\n", file.c_str()); // the last one is what it ended with
            std::fflush(stdout);
            std::ifstream opened(file, std::ios::binary);
            // Just as large as the input: what is read behind it is noticed.
            const std::vector<char> bytes{std::istreambuf_iterator<char>(opened), {}};
            const std::vector<unsigned char> exact(bytes.begin(), bytes.end());
            LLVMFuzzerTestOneInput(exact.data(), exact.size());
        }
        replayed += files.size();
    }
    std::printf("%zu inputs\n", replayed);
    return replayed > 0 ? 0 : 1;
}
