// The generated interfaces, and what every file here needs of the system.
#pragma once

#include <windows.h>
// clang-format off
#include <ole2.h>
#include <oaidl.h>
// clang-format on

#include <Orvo_Tile.h>
