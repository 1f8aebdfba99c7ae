// What wayland-scanner makes of the protocols: the tables that name their requests and events. They are
// written for C; the headers before them make their names known to the other files.
#include "ext-idle-notify-v1-client-protocol.h"
#include "image-copy-capture-client-protocol.h"
#include "kde-idle-client-protocol.h"
#include "viewporter-client-protocol.h"
#include "wlr-layer-shell-client-protocol.h"
#include "wlr-screencopy-client-protocol.h"
#include "xdg-output-unstable-v1-client-protocol.h"
#include "xdg-shell-client-protocol.h"

extern "C" {
#include "ext-idle-notify-v1-protocol.h"
#include "image-copy-capture-protocol.h"
#include "kde-idle-protocol.h"
#include "viewporter-protocol.h"
#include "wlr-layer-shell-protocol.h"
#include "wlr-screencopy-protocol.h"
#include "xdg-output-unstable-v1-protocol.h"
#include "xdg-shell-protocol.h"
}
