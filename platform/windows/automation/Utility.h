// The host product's utility library where it is registered, else the one of this tree.
#pragma once

#include "platform/Platform.h"

namespace orvo::windows {

/// Makers of the two service classes.
struct UtilityMakers {
    platform::Maker<IUtilTools> newUtilTools;
    platform::Maker<IRasterConvert> newRasterConvert;
};

/// This tree's own services: rasters through the Windows Imaging Component.
UtilityMakers OwnUtility();

/// `BrindleUtil.clsUtilTools` and `BrindleUtil.clsRasterConvert`, each where it is registered when an object
/// is asked for; else `own`.
UtilityMakers HostUtilityOr(const UtilityMakers& own);

/// The language offset of this process: the variable ORVO_TILE_LANGUAGE, else the user's language.
Integer LanguageOffset();

}  // namespace orvo::windows
