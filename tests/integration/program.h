// Another process, with an environment of its own; killed when this goes.
#pragma once

#include <map>
#include <string>
#include <unistd.h>
#include <vector>

using Environment = std::map<std::string, std::string>;

// Asks until the answer is yes. False when it is still no after a while that is generous for a busy machine
// under sanitizers: a passing test never waits that long.
template <class Question> bool Eventually(Question question) {
    constexpr int kPatienceMs = 100000;
    constexpr int kPollMs = 10;
    for (int waited = 0; waited < kPatienceMs; waited += kPollMs) {
        if (question())
            return true;
        usleep(kPollMs * 1000);
    }
    return false;
}

class Program {
public:
    Program() = default;
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // The program by its whole path. It starts in that folder, and has one file: for its standard error
    // stream.
    void Start(std::vector<std::string> words, const Environment& environment, const std::string& folder,
               const std::string& errors);
    bool Running();
    // The exit code, or -1 when it does not end, or -2 when a signal ended it.
    int WaitForExit();
    void Signal(int number) const;
    void Kill();

private:
    int pid_ = -1;
    int status_ = -1;
};
