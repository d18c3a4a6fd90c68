// The entry that the module DLL (Tavlet.arx) exports. The host's binding calls
// it from its acrxEntryPoint with the load message (1, the module's pkt) and the
// unload message (2), and with the host port's session; the demo host and the
// tests call it the same way after LoadLibrary. Returns 0 for every message.
#pragma once

#include "host/port/host_session.h"

#define TAVLET_ARX_ENTRY_NAME "TavletArxEntry"

extern "C" {
typedef long(TAVLET_PORT_CALL* TavletArxEntryFunction)(long msg, void* pkt, tavlet::port::HostSession* session);
}
