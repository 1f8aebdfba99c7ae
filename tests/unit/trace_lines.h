// The trace of one test, as its lines without thread and time.
#pragma once

#include "platform/trace.h"
#include "unit/temp_folder.h"

#include <sstream>

class TraceLines {
public:
    explicit TraceLines(const TempFolder& folder) : folder_(folder) {
        EXPECT_TRUE(fxOpenTraces(folder_.File("trace").c_str()));
    }
    ~TraceLines() { fxCloseTraces(); }
    TraceLines(const TraceLines&) = delete;
    TraceLines& operator=(const TraceLines&) = delete;

    // What was written up to now, e.g. {"loading devil", "#ERROR: failed"}.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        std::istringstream log(folder_.Read("trace"));
        for (std::string line; std::getline(log, line);)
            if (const std::size_t text = line.find("] "); text != std::string::npos)
                lines.push_back((line.starts_with("#ERROR: ") ? "#ERROR: " : "") + line.substr(text + 2));
        return lines;
    }

private:
    const TempFolder& folder_;
};
