#include "host/close_rule.h"

bool SaverMayClose(bool preview, bool escapeHit, bool started, double now, double startTime) {
    constexpr double kGraceSeconds = 4.0;
    if (preview || escapeHit)
        return true;
    return started && now - startTime > kGraceSeconds;
}
