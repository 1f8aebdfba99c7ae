#include "package/name_server.h"

int FXNameServer::FindId(const char* name) const {
    const int at = names.Findpos(name);
    return at < 0 ? -1 : firstId + at;
}

int FXNameServer::BuildId(const char* name) {
    const int id = FindId(name);
    if (id >= 0)
        return id;
    names.Push(name);
    return firstId + names.Count() - 1;
}

void FXNameServer::Destroy() {
    names.DestroyBuf();
    firstId = 0;
}
