// Gives names consecutive ids.
#pragma once

#include "base/str_array.h"

class FXNameServer {
public:
    int BuildId(const char* name);      // the name's id; a new name gets the next one. -1 when none is left
    int FindId(const char* name) const; // -1 when absent; exact comparison
    void Destroy();

    FXStrArray names; // in id order
    int firstId = 0;  // the id of the first name
};
