#include "platform/windows/imaging/RasterFile.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <locale>
#include <optional>

#include "platform/RuntimeError.h"
#include "platform/windows/automation/EnvelopeObject.h"
#include "platform/windows/imaging/Image.h"
#include "support/SystemPath.h"
#include "support/Text.h"

namespace orvo::windows {
namespace {

/// Cells of positive size from the top left corner of the raster.
struct Georeference {
    double xMin = 0;
    double yMax = 0;
    Point cellSize;
};

/// The lines of a world file: cell width, two shears, cell height downwards, centre of the upper left cell.
std::optional<Georeference> ReadWorldFile(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream) return std::nullopt;
    stream.imbue(std::locale::classic());
    std::array<double, 6> lines{};
    for (double& line : lines) stream >> line;
    const auto& [width, shearY, shearX, height, x, y] = lines;
    if (!stream) throw RuntimeError(Fault::DeviceIOError, PathText(file) + " is no world file");
    if (shearX != 0 || shearY != 0 || !(width > 0) || !(height < 0))
        throw RuntimeError(
            Fault::InvalidProcedureCall,
            PathText(file) + " rotates, shears or turns the image; bring it to north up first");
    constexpr double kHalf = 0.5;
    return Georeference{x - width * kHalf, y - height * kHalf, {width, -height}};
}

/// "tfw" and "tifw" for "tif", then "wld".
std::optional<Georeference> GeoreferenceOf(const std::string& path) {
    std::filesystem::path file = DiskPath(path);
    const std::string dotted = PathText(file.extension());
    std::vector<std::string> endings{"wld"};
    if (dotted.size() > 2)
        endings = {std::string{dotted[1], dotted.back(), 'w'}, dotted.substr(1) + "w", "wld"};
    for (const std::string& ending : endings) {
        if (const auto found = ReadWorldFile(file.replace_extension(ending))) return found;
    }
    return std::nullopt;
}

class Dataset final : public IRasterDataset {
  public:
    explicit Dataset(std::string formatName) : formatName_(std::move(formatName)) {}
    std::string FormatName() override { return formatName_; }

  private:
    std::string formatName_;
};

struct Facts {
    std::string path;
    Long columns = 0;
    Long rows = 0;
    std::string formatName;
    Georeference place;
};

class Raster final : public IRaster {
  public:
    explicit Raster(Facts facts) : facts_(std::move(facts)) {}
    Long Width() override { return facts_.columns; }
    Long Height() override { return facts_.rows; }
    Point MeanCellSize() override { return facts_.place.cellSize; }
    std::shared_ptr<IRasterDataset> RasterDataset() override {
        return std::make_shared<Dataset>(facts_.formatName);
    }

  private:
    Facts facts_;
};

class RasterLayer final : public IRasterLayer {
  public:
    explicit RasterLayer(Facts facts) : facts_(std::move(facts)) {}
    std::string FilePath() override { return facts_.path; }
    std::shared_ptr<IRaster> Raster() override { return std::make_shared<windows::Raster>(facts_); }
    bool IsInGeodatabase() override { return false; }
    std::shared_ptr<IEnvelope> Extent() override {
        auto extent = NewEnvelope();
        const auto& [xMin, yMax, cell] = facts_.place;
        extent->XMin(xMin);
        extent->XMax(xMin + cell.X * facts_.columns);
        extent->YMax(yMax);
        extent->YMin(yMax - cell.Y * facts_.rows);
        return extent;
    }

  private:
    Facts facts_;
};

}  // namespace

std::shared_ptr<IRasterLayer> OpenRasterFile(const std::string& path) {
    const ImageSource image(path);
    const Georeference onCells{0, static_cast<double>(image.Rows()), {1, 1}};
    return std::make_shared<RasterLayer>(Facts{path, image.Columns(), image.Rows(), image.FormatName(),
                                               GeoreferenceOf(path).value_or(onCells)});
}

std::shared_ptr<IRasterDataset> OpenImageDataset(const std::string& path) {
    return std::make_shared<Dataset>(ImageSource(path).FormatName());
}

}  // namespace orvo::windows
