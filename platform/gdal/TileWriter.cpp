#include "platform/gdal/TileWriter.h"

#include <cpl_string.h>
#include <gdal_utils.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "platform/RuntimeError.h"
#include "platform/gdal/BandFacts.h"
#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/FormatTrial.h"
#include "platform/gdal/ScopedOption.h"

namespace orvo::gdal {
namespace {

constexpr std::int64_t kMostCellsToTry = 2 << 20;
const std::string kMemoryFolder = "/vsimem/orvo-tile";

/// The format's encoder in this library, where options of another library's are not asked for.
PictureFormat Known(const TileStyle& style) {
    if (!style.options.empty()) return std::nullopt;
    constexpr std::array kDrivers = {
        std::pair{"PNG", raster::ImageFormat::Png}, std::pair{"JPEG", raster::ImageFormat::Jpeg},
        std::pair{"GIF", raster::ImageFormat::Gif}, std::pair{"BMP", raster::ImageFormat::Bmp}};
    for (const auto& [driver, format] : kDrivers) {
        if (style.format.driver == driver) return format;
    }
    return std::nullopt;
}

void AddNumbers(CPLStringList& arguments, std::initializer_list<double> numbers) {
    for (const double number : numbers) arguments.AddString(CPLSPrintf("%.17g", number));
}

/// Greys as colours.
void ShowAsColours(Pixels& pixels) {
    if (pixels.form != Form::Grey && pixels.form != Form::GreyAlpha) return;
    const std::vector<unsigned char> greys = pixels.bytes;
    const auto channels = static_cast<std::size_t>(pixels.Channels());
    pixels.form = channels == 2 ? Form::RGBA : Form::RGB;
    pixels.Resize(pixels.width, pixels.height);
    unsigned char* to = pixels.bytes.data();
    for (std::size_t i = 0; i < greys.size(); i += channels) {
        for (int colour = 0; colour < 3; ++colour) *to++ = greys[i];
        if (channels == 2) *to++ = greys[i + 1];
    }
}

/// All bands, where they have one type and no mask of their own.
std::vector<int> AlikeBands(GDALDataset& dataset) {
    std::vector<int> bands;
    for (int number = 1; number <= dataset.GetRasterCount(); ++number) {
        GDALRasterBand& band = *dataset.GetRasterBand(number);
        const int flags = band.GetMaskFlags();
        const bool masked = (flags & (GMF_ALL_VALID | GMF_ALPHA | GMF_NODATA)) == 0;
        if (masked || band.GetRasterDataType() != dataset.GetRasterBand(1)->GetRasterDataType()) return {};
        bands.push_back(number);
    }
    return bands;
}

std::string Contents(const std::string& path) {
    GByte* bytes = nullptr;
    vsi_l_offset size = 0;
    if (VSIIngestFile(nullptr, path.c_str(), &bytes, &size, -1) == 0)
        throw RuntimeError(Fault::DeviceIOError, "the file that was made cannot be read");
    std::string text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
    VSIFree(bytes);
    return text;
}

}  // namespace

TileWriter::TileWriter(std::shared_ptr<RasterLayer> layer, TileStyle style, int columns, int rows)
    : encoder_(std::move(layer), style.range),
      style_(std::move(style)),
      driver_(*GetGDALDriverManager()->GetDriverByName(style_.format.driver.c_str())),
      known_(Known(style_)) {
    constexpr std::size_t kMostIdle = 64;
    idle_.reserve(kMostIdle);
    if (known_) {
        treatment_.picture = true;
        treatment_.stretched = encoder_.Reader().IsStretched(HoldsOf(known_));
    } else {
        RasterLayer& own = encoder_.Layer();
        alike_ = AlikeBands(own.Dataset());
        const bool large = std::int64_t{columns} * rows > kMostCellsToTry;
        const int most = large ? 256 : std::max(columns, rows);
        Try(ExactWindow(0, 0, std::min({columns, most, own.Width()}), std::min({rows, most, own.Height()})));
    }
}

TileWriter::~TileWriter() {
    std::error_code ignored;
    if (!workFolder_.empty()) std::filesystem::remove_all(workFolder_, ignored);
}

CPLStringList TileWriter::Options() const {
    CPLStringList options;
    for (const std::string& option : style_.options) options.AddString(option.c_str());
    const char* const listed = driver_.GetMetadataItem(GDAL_DMD_CREATIONOPTIONLIST);
    const std::string known = listed == nullptr ? "" : listed;
    const auto add = [&](const char* name, const char* value) {
        const bool knows = known.find(std::string("name='") + name + "'") != std::string::npos;
        if (knows && options.FetchNameValue(name) == nullptr) options.SetNameValue(name, value);
    };
    add("QUALITY", CPLSPrintf("%d", style_.quality));
    add("WRITE_GDAL_HISTORY", "NO");  // it holds the time of day
    return options;
}

/// The window as a dataset, with all that the layer says of itself. Where whole cells of one type are asked
/// for, these are read ahead; else the dataset is a virtual one.
GDALDatasetUniquePtr TileWriter::Part(const TileWindow& window, TileInWork& tile) {
    GDALDatasetUniquePtr part = IsReadAtOnce(window) ? CellsOf(window, tile) : VirtualPart(window);
    if (!keepsPlace_ && !style_.place) {
        std::array<double, 6> none{0, 1, 0, 0, 0, 1};
        part->SetGeoTransform(none.data());
        part->SetSpatialRef(nullptr);
    }
    return part;
}

GDALDatasetUniquePtr TileWriter::CellsOf(const TileWindow& window, TileInWork& tile) {
    RasterLayer& layer = encoder_.Layer();
    GDALDataset& source = layer.Dataset();
    const GDALDataType type = source.GetRasterBand(1)->GetRasterDataType();
    const auto bytes = static_cast<std::size_t>(GDALGetDataTypeSizeBytes(type));
    const std::size_t pixel = bytes * alike_.size(), line = pixel * static_cast<std::size_t>(window.columns);
    tile.cells.resize(line * static_cast<std::size_t>(window.rows));
    encoder_.Reader().ReadCells(window, alike_, type, tile.cells.data());
    GDALDatasetUniquePtr part(GetGDALDriverManager()->GetDriverByName("MEM")->Create(
        "", window.columns, window.rows, 0, type, nullptr));
    for (const int number : alike_) {
        CPLStringList place;
        place.SetNameValue(
            "DATAPOINTER",
            CPLSPrintf("%p",
                       static_cast<void*>(tile.cells.data() + bytes * static_cast<std::size_t>(number - 1))));
        place.SetNameValue("PIXELOFFSET", CPLSPrintf("%zu", pixel));
        place.SetNameValue("LINEOFFSET", CPLSPrintf("%zu", line));
        part->AddBand(type, place.List());
        CopyFacts(*source.GetRasterBand(number), *part->GetRasterBand(number));
    }
    CopyMetadata(source, *part);
    SayPlace(*part, window);
    return part;
}

GDALDatasetUniquePtr TileWriter::VirtualPart(const TileWindow& window) const {
    GDALDataset& source = encoder_.Layer().Dataset();
    CPLStringList arguments;
    for (const char* const argument : {"-q", "-of", "VRT", "-srcwin"}) arguments.AddString(argument);
    AddNumbers(arguments, {window.left, window.top, window.right - window.left, window.bottom - window.top});
    if (!window.IsExact()) {
        const bool indexed = source.GetRasterBand(1)->GetColorTable() != nullptr;
        for (const char* const argument : {"-r", indexed ? "near" : "bilinear", "-outsize"})
            arguments.AddString(argument);
        AddNumbers(arguments, {static_cast<double>(window.columns), static_cast<double>(window.rows)});
    }
    const ErrorCapture errors;
    GDALTranslateOptions* const options = GDALTranslateOptionsNew(arguments.List(), nullptr);
    GDALDatasetUniquePtr part(
        GDALDataset::FromHandle(GDALTranslate("", GDALDataset::ToHandle(&source), options, nullptr)));
    GDALTranslateOptionsFree(options);
    if (!part) throw RuntimeError(Fault::DeviceIOError, errors.Reason("the source cannot be read"));
    return part;
}

GDALDatasetUniquePtr TileWriter::Picture(const TileWindow& window, const PictureKind& kind,
                                         TileInWork& tile) {
    encoder_.Reader().Read(window, kind.holds, tile.pixels);
    if (kind.onlyColours) ShowAsColours(tile.pixels);
    GDALDatasetUniquePtr image(DatasetOf(tile.pixels).release());
    SayPlace(*image, window);
    return image;
}

void TileWriter::SayPlace(GDALDataset& target, const TileWindow& window) const {
    const RasterLayer& layer = encoder_.Layer();
    if (!layer.IsGeoreferenced() || (!keepsPlace_ && !style_.place)) return;
    std::array<double, 6> t = layer.GeoTransform();
    t[0] += window.left * t[1];
    t[3] += window.top * t[5];
    t[1] *= (window.right - window.left) / window.columns;
    t[5] *= (window.bottom - window.top) / window.rows;
    target.SetGeoTransform(t.data());
    target.SetSpatialRef(layer.Dataset().GetSpatialRef());
}

std::shared_ptr<TileInWork> TileWriter::NewTile(const std::string& name) {
    std::unique_ptr<TileInWork> tile;
    {
        const std::lock_guard lock(resting_);
        if (!idle_.empty()) {
            tile = std::move(idle_.back());
            idle_.pop_back();
        }
    }
    if (!tile) tile = std::make_unique<TileInWork>(style_.effort);
    tile->name = name;
    tile->made.clear();
    const auto rest = [this](TileInWork* used) {
        std::unique_ptr<TileInWork> owned(used);
        owned->image.reset();
        const std::lock_guard lock(resting_);
        if (idle_.size() < idle_.capacity()) idle_.push_back(std::move(owned));
    };
    return {tile.release(), rest};
}

std::shared_ptr<TileInWork> TileWriter::Read(const TileWindow& window, const std::string& name) {
    const std::lock_guard lock(encoder_.Layer().Reading());
    std::shared_ptr<TileInWork> tile = NewTile(name);
    encoder_.Read(window, [&] {
        if (known_) {
            encoder_.ReadPicture(window, known_, tile->pixels);
            return;
        }
        tile->image = treatment_.picture ? Picture(window, kind_, *tile) : Part(window, *tile);
        // A virtual part reads the source while it is written, and libraries with files of their own are
        // used by one thread at a time.
        if (inMemory_ && (treatment_.picture || IsReadAtOnce(window))) return;
        tile->made = FilesOf(*tile->image, name);
        tile->image.reset();  // a virtual part lets go of the source's blocks
    });
    return tile;
}

std::vector<MadeFile> TileWriter::Write(TileInWork& tile) {
    if (!tile.made.empty()) return std::move(tile.made);
    if (!known_) return FilesOf(*tile.image, tile.name);
    const auto bytes = tile.encoder.Encode(tile.pixels, known_, style_.quality);
    return {{tile.name, std::string(bytes.begin(), bytes.end())}};
}

std::string TileWriter::MakeTiff(const TileWindow& window) {
    const std::lock_guard lock(encoder_.Layer().Reading());
    const auto bytes = encoder_.Encode(window, raster::ImageFormat::Tiff, style_.quality);
    return {bytes.begin(), bytes.end()};
}

bool TileWriter::IsBlank(const TileWindow& window) {
    const std::lock_guard lock(encoder_.Layer().Reading());
    bool blank = false;
    encoder_.Read(window, [&] { blank = encoder_.Reader().IsBlank(window); });
    return blank;
}

Stretch TileWriter::LayerStretch() {
    const std::lock_guard lock(encoder_.Layer().Reading());
    return encoder_.Reader().LayerStretch();
}

std::vector<MadeFile> TileWriter::FilesOf(GDALDataset& image, const std::string& name) {
    std::vector<MadeFile> made;
    Copy(image, name, [&](const FolderOfFiles& files, const std::string& path) {
        made = {{name, Contents(path)}};
        const std::string folder = path.substr(0, path.size() - name.size());
        for (const std::string& other : files.Names()) {
            if (other != name) made.push_back({other, Contents(folder + other)});
        }
    });
    return made;
}

/// The files are made in a folder of their own, so that they are known by being there; tiles in several
/// folders may have one name.
void TileWriter::Copy(GDALDataset& image, const std::string& name,
                      const std::function<void(const FolderOfFiles& files, const std::string& path)>& look) {
    static std::atomic<std::uint64_t> folders = 0;
    const std::string folder = (inMemory_ ? kMemoryFolder : workFolder_) + "/" + std::to_string(++folders);
    const FolderOfFiles files(folder);
    const std::string path = folder + "/" + name;
    const ErrorCapture errors;
    GDALDatasetUniquePtr made(
        driver_.CreateCopy(path.c_str(), &image, FALSE, Options().List(), nullptr, nullptr));
    const bool failed = !made;
    made.reset();
    if (failed || errors.Failed()) {
        std::string reason = errors.Reason("no reason was given");
        for (auto at = reason.find(folder); at != std::string::npos; at = reason.find(folder))
            reason.replace(at, folder.size() + 1, "");
        throw RuntimeError(Fault::DeviceIOError, style_.format.driver + ": " + reason);
    }
    look(files, path);
}

void TileWriter::MakeWorkFolder() {
    std::error_code failed;
    std::string folder = (std::filesystem::temp_directory_path(failed) / "orvo-tile-XXXXXX").string();
    if (failed || mkdtemp(folder.data()) == nullptr)
        throw RuntimeError(Fault::PathFileAccess, "no folder can be made for temporary files");
    workFolder_ = folder;
}

void TileWriter::Try(const TileWindow& sample) {
    constexpr Holds kAll{.transparency = true, .palette = true}, kClear{.transparency = true}, kPlain{};
    const char* const virtualFiles = driver_.GetMetadataItem(GDAL_DCAP_VIRTUALIO);
    std::string reason;
    const auto works = [&](const auto& trial) {
        try {
            return trial();
        } catch (const RuntimeError& failure) {
            if (reason.empty()) reason = failure.Description();
            return false;
        }
    };
    for (inMemory_ = virtualFiles != nullptr;; inMemory_ = false) {
        if (!inMemory_) MakeWorkFolder();
        if (style_.picture && works([&] { return TryPicture(sample, {*style_.picture, false}); })) return;
        if (!style_.picture && works([&] { return TryNative(sample); })) return;
        for (const bool onlyColours : {false, true}) {
            for (const Holds& holds : {kAll, kClear, kPlain}) {
                if (works([&] { return TryPicture(sample, {holds, onlyColours}); })) return;
            }
        }
        if (!inMemory_) break;
    }
    throw RuntimeError(
        static_cast<Long>(Fault::AutomationError),
        style_.format.driver + " holds no tile of this layer" + (reason.empty() ? "" : " (" + reason + ")"));
}

Likeness TileWriter::Trial(GDALDataset& image) {
    FillHard(image);
    Likeness found;
    Copy(image, "sample." + style_.format.extension,
         [&](const FolderOfFiles& files, const std::string& path) {
             static_cast<void>(files.Names());
             found = Compare(image, path);
         });
    if (found.sameForm) keepsPlace_ = found.ownPlace;
    return found;
}

bool TileWriter::TryNative(const TileWindow& sample) {
    TileInWork tile(style_.effort);
    const GDALDatasetUniquePtr part = Part(sample, tile);
    const GDALDatasetUniquePtr image(GetGDALDriverManager()->GetDriverByName("MEM")->CreateCopy(
        "", part.get(), FALSE, nullptr, nullptr, nullptr));
    const Likeness found = Trial(*image);
    if (!found.sameForm) return false;
    treatment_.losses = !found.sameValues;
    treatment_.lost = found.lost;
    return true;
}

bool TileWriter::TryPicture(const TileWindow& sample, const PictureKind& kind) {
    TileInWork tile(style_.effort);
    const GDALDatasetUniquePtr image = Picture(sample, kind, tile);
    const Likeness found = Trial(*image);
    if (!found.sameForm) return false;
    kind_ = kind;
    treatment_.picture = true;
    treatment_.stretched = encoder_.Reader().IsStretched(kind.holds);
    treatment_.losses = !found.sameValues;
    return true;
}

}  // namespace orvo::gdal
