// The record of one tile of a vector grid.
#pragma once

#include <memory>
#include <string>

#include "platform/Geometry.h"

namespace orvo {

/// Name and envelope of one tile; made by clsTileVector only. 48 bytes, and no allocation of its own.
class clsVectorTile {
  public:
    clsVectorTile() = default;
    ~clsVectorTile();
    clsVectorTile(const clsVectorTile&) = delete;
    clsVectorTile& operator=(const clsVectorTile&) = delete;

    void Extent(const std::shared_ptr<IEnvelope>& objNewValue);
    std::shared_ptr<IEnvelope> Extent();
    void Id(const std::string& strNewValue);
    std::string Id();

  private:
    std::string id_;
    std::shared_ptr<IEnvelope> extent_;
};

}  // namespace orvo
