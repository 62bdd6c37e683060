// Raster layers, their rasters, and folders opened as raster workspaces.
#pragma once

#include <memory>
#include <string>

#include "platform/Geometry.h"

namespace orvo {

/// The dataset behind a raster.
class IRasterDataset {
  public:
    virtual ~IRasterDataset() = default;
    /// The platform's name of the storage format; "FGDBR" for a raster in a file geodatabase.
    virtual std::string FormatName() = 0;
};

/// The cells of a raster layer.
class IRaster {
  public:
    virtual ~IRaster() = default;
    virtual Long Width() = 0;          ///< number of columns
    virtual Long Height() = 0;         ///< number of rows
    virtual Point MeanCellSize() = 0;  ///< cell width (X) and cell height (Y) in map units, both positive
    virtual std::shared_ptr<IRasterDataset> RasterDataset() = 0;
};

/// One raster layer of a map.
class IRasterLayer {
  public:
    virtual ~IRasterLayer() = default;
    /// The path of the image file; for a raster inside a container, the container's path, "\" and its name.
    virtual std::string FilePath() = 0;
    virtual std::shared_ptr<IRaster> Raster() = 0;
    /// Whether the data source is held in a database or another container instead of a file of its own.
    virtual bool IsInGeodatabase() = 0;
    /// The layer's extent in map units; a new object on every call, owned by the caller.
    virtual std::shared_ptr<IEnvelope> Extent() = 0;
};

/// A place that holds datasets.
class IWorkspace {
  public:
    virtual ~IWorkspace() = default;
    virtual std::string PathName() = 0;
};

/// A folder of raster files.
class IRasterWorkspace : public IWorkspace {
  public:
    /// The raster of that file name in the folder; fails where the platform cannot open it.
    virtual std::shared_ptr<IRasterDataset> OpenRasterDataset(const std::string& name) = 0;
};

class IRasterWorkspaceFactory {
  public:
    virtual ~IRasterWorkspaceFactory() = default;
    /// Opens a folder; `hWnd` is the owner window of any dialog, 0 for none. Fails where there is none.
    virtual std::shared_ptr<IWorkspace> OpenFromFile(const std::string& path, Long hWnd) = 0;
};

}  // namespace orvo
