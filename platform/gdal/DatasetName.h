// Names of rasters that lie inside a container: databases, files with several rasters, archives.
#pragma once

#include <optional>
#include <string>

namespace orvo::gdal {

/// A container and the name that a raster has in it.
struct ContainedName {
    std::string container;  ///< path as given
    std::string inner;
};

/// Takes a name such as GPKG:file:table, HDF5:"file"://dataset or /vsizip/file/member apart; empty where the
/// name is a plain file's.
std::optional<ContainedName> ParseContainedName(const std::string& name);

/// The path's last component without its last extension.
std::string StemOf(const std::string& path);

}  // namespace orvo::gdal
