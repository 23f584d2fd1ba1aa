// The desktop's filling of the host record: Qt 6 Widgets over X11.
#pragma once

#include "platform/host/host.h"

extern const Host qtHost;
