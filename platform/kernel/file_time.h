// The system's times as Windows has them.
#pragma once

#include "platform/api/kernel.h"

#include <ctime>

// In units of 100 nanoseconds since 1601, cut; 0 for what lies before.
FILETIME FileTimeOf(const timespec& time);
