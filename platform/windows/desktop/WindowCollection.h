// A pixel window as a collection of four numbers.
#pragma once

#include "platform/Utility.h"
#include "platform/windows/automation/ScriptObject.h"

namespace orvo::windows {

/// Column, row, width and height, counted from 1: Count, Item and enumeration. The caller owns the reference
/// that the object starts with.
ScriptObject* NewWindowCollection(const PixelWindow& window);

/// The window of a collection of four numbers, counted from 1. One of another size fails with number 9.
PixelWindow WindowOfCollection(IDispatch* collection);

}  // namespace orvo::windows
