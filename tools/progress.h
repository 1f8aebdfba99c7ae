// How far long work is: one line that counts up on a terminal, nothing where the output is not one.
#pragma once

#include <cstddef>

class Progress {
public:
    // what: the unit of work, as in "frame".
    Progress(const char* what, std::size_t total, bool wanted);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Done(std::size_t count);
    void Clear(); // takes the line away, before something else is written

private:
    const char* what_;
    std::size_t total_;
    bool shown_;
};
