#include "platform/windows/imaging/Image.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "platform/windows/imaging/GifTransparency.h"
#include "platform/windows/system/WideText.h"

namespace orvo::windows {
namespace {

constexpr std::size_t kLoaded = 4;  // samples of a pixel as it is loaded

Ref<IWICImagingFactory> Factory() {
    Ref<IWICImagingFactory> factory;
    Require(::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                               factory.OutVoid()),
            "the Windows Imaging Component");
    return factory;
}

/// The format of a decoder's container; empty for one that is not served.
std::string NameOf(const GUID& container) {
    if (::IsEqualGUID(container, GUID_ContainerFormatPng)) return "PNG";
    if (::IsEqualGUID(container, GUID_ContainerFormatJpeg)) return "JPEG";
    if (::IsEqualGUID(container, GUID_ContainerFormatBmp)) return "BMP";
    if (::IsEqualGUID(container, GUID_ContainerFormatGif)) return "GIF";
    if (::IsEqualGUID(container, GUID_ContainerFormatTiff)) return "TIFF";
    return {};
}

bool IsOneOf(const GUID& id, std::initializer_list<const GUID*> list) {
    return std::ranges::any_of(list, [&](const GUID* other) { return ::IsEqualGUID(id, *other) != 0; });
}

bool IsGrey(const GUID& format) {
    return IsOneOf(
        format, {&GUID_WICPixelFormatBlackWhite, &GUID_WICPixelFormat2bppGray, &GUID_WICPixelFormat4bppGray,
                 &GUID_WICPixelFormat8bppGray, &GUID_WICPixelFormat16bppGray});
}

bool HasAlpha(const GUID& format) {
    return IsOneOf(
        format, {&GUID_WICPixelFormat32bppBGRA, &GUID_WICPixelFormat32bppPBGRA, &GUID_WICPixelFormat32bppRGBA,
                 &GUID_WICPixelFormat64bppRGBA, &GUID_WICPixelFormat64bppBGRA});
}

bool IsIndexed(const GUID& format) {
    return IsOneOf(format, {&GUID_WICPixelFormat1bppIndexed, &GUID_WICPixelFormat2bppIndexed,
                            &GUID_WICPixelFormat4bppIndexed, &GUID_WICPixelFormat8bppIndexed});
}

}  // namespace

ImageSource::ImageSource(const std::string& path) : path_(path) {
    const std::wstring wide = Wide(path);
    if (::GetFileAttributesW(wide.c_str()) == INVALID_FILE_ATTRIBUTES)
        throw RuntimeError(Fault::FileNotFound, path);
    const auto factory = Factory();
    const HRESULT opened = factory->CreateDecoderFromFilename(wide.c_str(), nullptr, GENERIC_READ,
                                                              WICDecodeMetadataCacheOnDemand, decoder_.Out());
    GUID container{};
    if (SUCCEEDED(opened) && SUCCEEDED(decoder_->GetContainerFormat(&container)))
        formatName_ = NameOf(container);
    if (formatName_.empty())
        throw RuntimeError(Fault::DeviceIOError,
                           path + " is no PNG, JPEG, BMP, GIF or TIFF that can be read");
    Ref<IWICBitmapFrameDecode> frame;
    Require(decoder_->GetFrame(0, frame.Out()), path);
    UINT columns = 0, rows = 0;
    Require(frame->GetSize(&columns, &rows), path);
    columns_ = static_cast<int>(columns);
    rows_ = static_cast<int>(rows);
    Classify(frame.Get());
    Require(::WICConvertBitmapSource(GUID_WICPixelFormat32bppBGRA, frame.Get(), source_.Out()), path);
}

void ImageSource::Classify(IWICBitmapSource* frame) {
    GUID format{};
    Require(frame->GetPixelFormat(&format), path_);
    hasPalette_ = IsIndexed(format);
    if (IsGrey(format)) kind_ = Pixels::Kind::Grey;
    if (HasAlpha(format)) kind_ = Pixels::Kind::Bgra;
    if (!hasPalette_) return;
    Ref<IWICPalette> palette;
    Require(Factory()->CreatePalette(palette.Out()), path_);
    BOOL transparent = FALSE;
    if (SUCCEEDED(frame->CopyPalette(palette.Get())) && SUCCEEDED(palette->HasAlpha(&transparent)) &&
        transparent != FALSE)
        kind_ = Pixels::Kind::Bgra;
}

void ImageSource::KeepRows(int row, int rows) {
    if (row >= bandTop_ && row + rows <= bandTop_ + band_.rows) return;
    band_ = Pixels();
    Pixels loaded(Pixels::Kind::Bgra, columns_, rows);
    const WICRect part{0, row, columns_, rows};
    const auto stride = static_cast<UINT>(kLoaded * static_cast<std::size_t>(columns_));
    Require(
        source_->CopyPixels(&part, stride, static_cast<UINT>(loaded.samples.size()), loaded.samples.data()),
        path_);
    band_ = std::move(loaded);
    bandTop_ = row;
}

Pixels ImageSource::Read(int column, int row, int columns, int rows) {
    KeepRows(row, rows);
    Pixels part(kind_, columns, rows);
    const std::size_t count = part.SampleCount();
    for (int y = 0; y < rows; ++y) {
        const std::uint8_t* from = band_.At(column, row - bandTop_ + y);
        std::uint8_t* to = part.At(0, y);
        for (int x = 0; x < columns; ++x, from += kLoaded, to += count) std::copy(from, from + count, to);
    }
    return part;
}

namespace {

const GUID& ContainerOf(ImageFormat format) {
    switch (format) {
        case ImageFormat::Jpeg:
            return GUID_ContainerFormatJpeg;
        case ImageFormat::Gif:
            return GUID_ContainerFormatGif;
        case ImageFormat::Bmp:
            return GUID_ContainerFormatBmp;
        case ImageFormat::Tiff:
            return GUID_ContainerFormatTiff;
        default:
            return GUID_ContainerFormatPng;
    }
}

const GUID& LayoutOf(Pixels::Kind kind) {
    if (kind == Pixels::Kind::Grey) return GUID_WICPixelFormat8bppGray;
    return kind == Pixels::Kind::Bgr ? GUID_WICPixelFormat24bppBGR : GUID_WICPixelFormat32bppBGRA;
}

void SetOption(IPropertyBag2* bag, const wchar_t* name, VARIANT value) {
    std::wstring text(name);
    PROPBAG2 option{};
    option.pstrName = text.data();
    Require(bag->Write(1, &option, &value), Utf8(name));
}

void SetOptions(IPropertyBag2* bag, ImageFormat format, int quality) {
    constexpr float kPercent = 100;
    VARIANT value{};
    if (format == ImageFormat::Jpeg) {
        value.vt = VT_R4;
        value.fltVal = static_cast<float>(quality) / kPercent;
        SetOption(bag, L"ImageQuality", value);
    } else if (format == ImageFormat::Tiff) {
        value.vt = VT_UI1;
        value.bVal = WICTiffCompressionNone;
        SetOption(bag, L"TiffCompressionMethod", value);
    }
}

Pixels WithKind(Pixels& pixels, Pixels::Kind kind) {
    Pixels changed(kind, pixels.columns, pixels.rows);
    const std::size_t has = pixels.SampleCount();
    const std::size_t wants = changed.SampleCount();
    const std::uint8_t* from = pixels.samples.data();
    for (std::size_t at = 0; at < changed.samples.size(); at += wants, from += has) {
        for (std::size_t i = 0; i < wants; ++i) {
            const std::uint8_t missing = i == 3 ? 255 : from[0];  // opaque; grey in every colour
            changed.samples[at + i] = i < has ? from[i] : missing;
        }
    }
    return changed;
}

Ref<IWICBitmap> BitmapOf(IWICImagingFactory* factory, Pixels& pixels) {
    Ref<IWICBitmap> bitmap;
    Require(factory->CreateBitmapFromMemory(
                static_cast<UINT>(pixels.columns), static_cast<UINT>(pixels.rows), LayoutOf(pixels.kind),
                static_cast<UINT>(pixels.SampleCount() * static_cast<std::size_t>(pixels.columns)),
                static_cast<UINT>(pixels.samples.size()), pixels.samples.data(), bitmap.Out()),
            "a tile in memory");
    return bitmap;
}

/// At most 256 colours: those of the pixels where they are no more, else the system's choice. Transparent
/// pixels share one entry.
struct Indexed {
    std::vector<WICColor> colours;
    std::vector<std::uint8_t> indexes;
};

constexpr std::size_t kColours = 256;
constexpr std::uint8_t kOpaqueFrom = 128;

WICColor ColourOf(const std::uint8_t* pixel) {
    if (pixel[3] < kOpaqueFrom) return 0;
    return 0xFF000000U | static_cast<WICColor>(pixel[2]) << 16 | static_cast<WICColor>(pixel[1]) << 8 |
           pixel[0];
}

/// Empty where there are more colours than entries.
Indexed ExactColours(Pixels& pixels) {
    Indexed result;
    std::map<WICColor, std::uint8_t> known;
    for (std::size_t at = 0; at < pixels.samples.size(); at += kLoaded) {
        const WICColor colour = ColourOf(&pixels.samples[at]);
        const auto [entry, added] = known.try_emplace(colour, static_cast<std::uint8_t>(known.size()));
        if (added && known.size() > kColours) return {};
        if (added) result.colours.push_back(colour);
        result.indexes.push_back(entry->second);
    }
    return result;
}

/// The system's choice of colours for an image, without dithering: neighbouring tiles then match best.
Ref<IWICBitmapSource> Quantised(IWICImagingFactory* factory, IWICBitmap* bitmap, bool transparent,
                                Ref<IWICPalette>& palette) {
    Require(palette->InitializeFromBitmap(bitmap, kColours, transparent), "the colours of a GIF");
    Ref<IWICFormatConverter> converter;
    Require(factory->CreateFormatConverter(converter.Out()), "a GIF");
    constexpr double kAlphaPercent = 50;
    Require(converter->Initialize(bitmap, GUID_WICPixelFormat8bppIndexed, WICBitmapDitherTypeNone,
                                  palette.Get(), kAlphaPercent, WICBitmapPaletteTypeCustom),
            "a GIF");
    return Ref<IWICBitmapSource>(converter.Get());
}

/// An encoder on a file, with one frame.
class Encoder {
  public:
    Encoder(const std::string& path, ImageFormat format, int quality) : about_(path), factory_(Factory()) {
        Require(factory_->CreateStream(stream_.Out()), about_);
        Require(stream_->InitializeFromFilename(Wide(path).c_str(), GENERIC_WRITE), about_);
        Require(factory_->CreateEncoder(ContainerOf(format), nullptr, encoder_.Out()), about_);
        Require(encoder_->Initialize(stream_.Get(), WICBitmapEncoderNoCache), about_);
        Ref<IPropertyBag2> bag;
        Require(encoder_->CreateNewFrame(frame_.Out(), bag.Out()), about_);
        SetOptions(bag.Get(), format, quality);
        Require(frame_->Initialize(bag.Get()), about_);
    }
    void Write(Pixels& pixels) {
        SetSize(pixels);
        const auto bitmap = BitmapOf(factory_.Get(), pixels);
        const GUID wanted = LayoutOf(pixels.kind);
        const GUID given = SetLayout(wanted);
        if (::IsEqualGUID(wanted, given)) return WriteSource(bitmap.Get());
        Ref<IWICBitmapSource> converted;
        Require(::WICConvertBitmapSource(given, bitmap.Get(), converted.Out()), about_);
        WriteSource(converted.Get());
    }
    /// The palette entry that is transparent; none where every pixel has a colour.
    std::optional<std::uint8_t> WriteIndexed(Pixels& pixels) {
        SetSize(pixels);
        SetLayout(GUID_WICPixelFormat8bppIndexed);
        Ref<IWICPalette> palette;
        Require(factory_->CreatePalette(palette.Out()), about_);
        Indexed exact = ExactColours(pixels);
        if (exact.colours.empty()) {
            const auto bitmap = BitmapOf(factory_.Get(), pixels);
            const auto source = Quantised(factory_.Get(), bitmap.Get(), HasHoles(pixels), palette);
            Require(frame_->SetPalette(palette.Get()), about_);
            WriteSource(source.Get());
            return TransparentEntry(palette.Get());
        }
        Require(palette->InitializeCustom(exact.colours.data(), static_cast<UINT>(exact.colours.size())),
                about_);
        Require(frame_->SetPalette(palette.Get()), about_);
        Require(frame_->WritePixels(static_cast<UINT>(pixels.rows), static_cast<UINT>(pixels.columns),
                                    static_cast<UINT>(exact.indexes.size()), exact.indexes.data()),
                about_);
        Commit();
        return TransparentEntry(palette.Get());
    }

  private:
    static std::optional<std::uint8_t> TransparentEntry(IWICPalette* palette) {
        std::array<WICColor, kColours> colours{};
        UINT count = 0;
        Require(palette->GetColors(kColours, colours.data(), &count), "the colours of a GIF");
        for (UINT i = 0; i < count; ++i)
            if (colours.at(i) >> 24 == 0) return static_cast<std::uint8_t>(i);
        return std::nullopt;
    }
    static bool HasHoles(const Pixels& pixels) {
        for (std::size_t at = kLoaded - 1; at < pixels.samples.size(); at += kLoaded)
            if (pixels.samples[at] < kOpaqueFrom) return true;
        return false;
    }
    void SetSize(const Pixels& pixels) {
        Require(frame_->SetSize(static_cast<UINT>(pixels.columns), static_cast<UINT>(pixels.rows)), about_);
    }
    GUID SetLayout(const GUID& wanted) {
        GUID format = wanted;
        Require(frame_->SetPixelFormat(&format), about_);
        return format;
    }
    void WriteSource(IWICBitmapSource* source) {
        Require(frame_->WriteSource(source, nullptr), about_);
        Commit();
    }
    void Commit() {
        Require(frame_->Commit(), about_);
        Require(encoder_->Commit(), about_);
    }

    std::string about_;
    Ref<IWICImagingFactory> factory_;
    Ref<IWICStream> stream_;
    Ref<IWICBitmapEncoder> encoder_;
    Ref<IWICBitmapFrameEncode> frame_;
};

}  // namespace

void WriteImage(const std::string& path, ImageFormat format, Pixels pixels, int quality) {
    if (format == ImageFormat::Gif) {
        pixels = WithKind(pixels, Pixels::Kind::Bgra);
        const auto transparent = Encoder(path, format, quality).WriteIndexed(pixels);
        if (transparent) MarkTransparent(path, *transparent);
        return;
    }
    const bool alpha = format == ImageFormat::Png || format == ImageFormat::Tiff;
    const bool grey = format != ImageFormat::Bmp;
    if (pixels.kind == Pixels::Kind::Bgra && !alpha) pixels = WithKind(pixels, Pixels::Kind::Bgr);
    if (pixels.kind == Pixels::Kind::Grey && !grey) pixels = WithKind(pixels, Pixels::Kind::Bgr);
    Encoder(path, format, quality).Write(pixels);
}

}  // namespace orvo::windows
