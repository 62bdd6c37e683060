// Vector files in many formats: disks that fill up while they are written, sources that shrink while they are
// read.
#include <gtest/gtest.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <filesystem>

#include "platform/Platform.h"
#include "platform/RuntimeError.h"
#include "platform/gdal/Attributes.h"
#include "platform/gdal/TileDataset.h"
#include "platform/gdal/VectorLayer.h"
#include "platform/memory/Envelope.h"
#include "tests/adapters/FileSizeLimit.h"
#include "tests/adapters/TempFolder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

class GdalVectorTest : public testing::TestWithParam<const char*> {
  protected:
    static constexpr int kFeatures = 1000;

    GdalVectorTest() {
        schema_.format = gdal::FindVectorFormat(GetParam());
        system_->importFromEPSG(4326);
        system_->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        OGRFieldDefn name("name", OFTString);
        fields_->AddFieldDefn(&name);
        schema_.fields = fields_.get();
        schema_.system = system_.get();
        schema_.points = true;
        schema_.area = {0, 0, 90, 90};
        schema_.idField = "source_fid";
        schema_.tileField = "tile";
    }

    void Write(const std::string& path) const {
        gdal::TileDataset dataset(path, "tile", schema_);
        OGRFeature feature(fields_.get());
        for (int i = 0; i < kFeatures; ++i) {
            feature.SetField(0, ("feature " + std::to_string(i)).c_str());
            const OGRPoint point(i % 89, i % 71);
            std::vector<unsigned char> wkb(point.WkbSize());
            point.exportToWkb(wkbNDR, wkb.data(), wkbVariantIso);
            dataset.Add(gdal::WriteAttributes(feature), i, wkb);
        }
        dataset.Close();
    }
    std::string PathIn(const TempFolder& folder) const {
        return folder / ("tile." + schema_.format.extension);
    }

    gdal::TileSchema schema_;
    struct Release {
        void operator()(OGRFeatureDefn* fields) const { fields->Release(); }
        void operator()(OGRSpatialReference* system) const { system->Release(); }
    };
    std::unique_ptr<OGRFeatureDefn, Release> fields_{[] {
        auto* fields = new OGRFeatureDefn("tile");
        fields->Reference();
        return fields;
    }()};
    std::unique_ptr<OGRSpatialReference, Release> system_{new OGRSpatialReference};
};

std::uintmax_t LargestFile(const TempFolder& folder) {
    std::uintmax_t largest = 0;
    for (const std::string& name : folder.Names()) largest = std::max(largest, fs::file_size(folder / name));
    return largest;
}

TEST_P(GdalVectorTest, NoFileIsCutOffUnseen) {
    const TempFolder whole;
    ASSERT_NO_THROW(Write(PathIn(whole)));
    const std::uintmax_t needed = LargestFile(whole);
    for (int part = 0; part < 24; ++part) {
        const TempFolder folder;
        const std::uintmax_t bytes = part == 0 ? needed - 1 : needed * static_cast<unsigned>(part) / 24;
        const FileSizeLimit limit(bytes);
        EXPECT_THROW(Write(PathIn(folder)), RuntimeError) << bytes << " of " << needed << " bytes";
    }
}

TEST_P(GdalVectorTest, NoSourceShrinksUnseen) {
    platform::Platform platform;
    platform.newEnvelope = [] { return std::make_shared<memory::Envelope>(); };
    platform::Install(std::move(platform));
    const TempFolder folder;
    Write(PathIn(folder));
    const auto layer = gdal::OpenVectorLayer(PathIn(folder), "");
    for (int i = 0; i < 10; ++i) ASSERT_TRUE(layer->Next());
    for (const std::string& name : folder.Names())
        fs::resize_file(folder / name, fs::file_size(folder / name) / 2);
    int given = 10;
    const auto readOn = [&] {
        while (layer->Next()) ++given;
    };
    try {
        readOn();
        EXPECT_EQ(given, kFeatures);  // held in memory
    } catch (const RuntimeError& failure) {
        EXPECT_LT(given, kFeatures) << failure.Description();
    }
    platform::Install({});
}

INSTANTIATE_TEST_SUITE_P(All, GdalVectorTest,
                         testing::Values("GPKG", "ESRI Shapefile", "FlatGeobuf", "CSV", "GML", "LIBKML",
                                         "GeoJSONSeq", "MapInfo File", "mif", "OGR_GMT", "SQLite", "JML",
                                         "Geoconcept"),
                         [](const auto& format) {
                             std::string name(format.param);
                             std::erase_if(name, [](char c) { return c == ' ' || c == '_'; });
                             return name;
                         });

}  // namespace
}  // namespace orvo
