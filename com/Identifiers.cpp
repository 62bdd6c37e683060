// The identifiers that the generated header declares.
// clang-format off
#include <initguid.h>
#include "com/Automation.h"
// clang-format on
