// Vector layers from whatever the library opens: their extent, and their features as a stream.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/Vector.h"

class GDALDataset;
class OGRFeature;
class OGRFeatureDefn;
class OGRLayer;
class OGRSpatialReference;

namespace orvo::gdal {

/// One layer of a dataset. Its features come one by one, so that a layer may be larger than memory.
class VectorLayer final : public ILayer {
  public:
    ~VectorLayer() override;
    VectorLayer(const VectorLayer&) = delete;
    VectorLayer& operator=(const VectorLayer&) = delete;

    /// The layer's extent, always the same object: who changes it changes it for all.
    std::shared_ptr<IEnvelope> AreaOfInterest() override;

    /// The next feature; null at the end. Fails with number 57 where the source breaks off, or ends before it
    /// has given as many features as it had at first.
    std::unique_ptr<OGRFeature> Next();
    /// What the source complained about while it gave the last feature; empty for nothing. Such a feature may
    /// lack its geometry.
    const std::string& Complaint() const { return complaint_; }
    /// How many features had texts that were no UTF-8, and in which field the first one; their bad bytes are
    /// U+FFFD now.
    std::int64_t MendedCount() const { return mended_; }
    const std::string& MendedField() const { return mendedField_; }
    /// Back to the first feature.
    void Rewind();
    /// How many features there were at first.
    std::int64_t FeatureCount() const { return count_; }

    const std::string& Name() const { return name_; }
    /// What it is read from, see SourceFiles.h.
    std::vector<std::string> Files() const;
    /// When the youngest of its files was changed, ISO 8601 in UTC; empty where that is not known.
    std::string Modified() const;
    OGRFeatureDefn& Definition() const;
    /// Null where it is not known.
    OGRSpatialReference* SpatialReference() const;

  private:
    friend std::shared_ptr<VectorLayer> OpenVectorLayer(const std::string& source, const std::string& layer);
    VectorLayer(const std::string& source, const std::string& layer);
    void TakeOverview();
    [[noreturn]] void BreakOff(const std::string& why) const;

    std::string source_;
    std::string name_;
    std::unique_ptr<GDALDataset> dataset_;
    OGRLayer* layer_;  ///< of the dataset
    std::shared_ptr<IEnvelope> extent_;
    std::string complaint_;
    std::int64_t count_ = 0;
    std::int64_t given_ = 0;  ///< since the last rewinding
    std::int64_t mended_ = 0;
    std::string mendedField_;
};

/// @param layer its name; empty for the only one
/// Fails with a RuntimeError that names the source and the remedy: number 5 where the layer must be chosen,
/// or chosen otherwise; 53 for no file; 440 for no vector data, no geometries, nothing in it.
std::shared_ptr<VectorLayer> OpenVectorLayer(const std::string& source, const std::string& layer);

}  // namespace orvo::gdal
