#include "platform/host/host.h"

const Host* host = nullptr;
