// Folders of image files as raster workspaces.
#pragma once

#include <memory>

#include "platform/Raster.h"
#include "platform/windows/automation/ScriptObject.h"

namespace orvo::windows {

/// A host's factory, reached by name.
std::shared_ptr<IRasterWorkspaceFactory> WorkspaceFactoryOf(IDispatch* object);

/// This tree's own: opens folders of image files that the Windows Imaging Component reads.
std::shared_ptr<IRasterWorkspaceFactory> NewWorkspaceFactory();

/// An automation object over a dataset. The caller owns the reference that the object starts with.
ScriptObject* NewDatasetObject(std::shared_ptr<IRasterDataset> dataset);

}  // namespace orvo::windows
