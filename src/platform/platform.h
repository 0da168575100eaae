// The one header the engine includes for platform types and calls.
#pragma once

#include "platform/cwnd.h"
#include "platform/dialog_resources.h"
#include "platform/gdi.h"
#include "platform/gdi_text.h"
#include "platform/graphics_memory.h"
#include "platform/host.h"
#include "platform/kernel.h"
#include "platform/types.h"
#include "platform/user.h"
