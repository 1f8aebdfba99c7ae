// What the compositor of the tests is asked by, once for all of them.
#include "viewporter-client-protocol.h"
#include "virtual-input-client-protocol.h"
#include "xdg-shell-client-protocol.h"
extern "C" { // written for C
#include "viewporter-protocol.h"
#include "virtual-input-protocol.h"
#include "xdg-shell-protocol.h"
}
