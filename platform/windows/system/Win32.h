// The system's headers, without their macros over names that the platform's interfaces use.
#pragma once

// clang-format off
#include <windows.h>
#include <oaidl.h>
// clang-format on

#undef DeleteFile
#undef MessageBox
#undef RegOpenKey
#undef RegQueryValueEx
