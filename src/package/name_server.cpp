#include "package/name_server.h"

#include <climits>

int FXNameServer::FindId(const char* name) const {
    const int at = names.Findpos(name);
    return at < 0 || at > INT_MAX - firstId ? -1 : firstId + at;
}

int FXNameServer::BuildId(const char* name) {
    if (names.Findpos(name) < 0)
        names.Push(name);
    return FindId(name);
}

void FXNameServer::Destroy() {
    names.DestroyBuf();
    firstId = 0;
}
