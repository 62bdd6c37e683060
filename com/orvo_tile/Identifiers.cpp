// The identifiers that the generated header declares.
// clang-format off
#include <initguid.h>
#include "com/orvo_tile/Interfaces.h"
// clang-format on
