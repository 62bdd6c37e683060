#include "platform/utility/Converter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "support/SystemPath.h"
#include "support/Text.h"

namespace orvo::utility {
namespace {

bool HasLosses(const std::string& format) {
    constexpr std::array<std::string_view, 10> formats{"jpg", "jpeg", "jpe",  "jfif", "webp",
                                                       "jp2", "j2k",  "heic", "avif", "jxl"};
    return std::find(formats.begin(), formats.end(), format) != formats.end();
}

/// What brings the source's bands to those of the format. The translator copies bands as they are: JPEG then
/// takes four for inks and a palette for grey, and WebP knows colours only.
std::vector<std::string> TranslatorBands(const ImageLayout& layout, const std::string& format) {
    const bool jpeg = format == "jpg" || format == "jpeg";
    if (!jpeg && format != "webp") return {};
    if (layout.palette) return {"-expand", "rgb"};
    if (jpeg && layout.bands == 2) return {"-b", "1"};
    if (jpeg && layout.bands == 4 && !layout.inks) {
        return {"-b", "1", "-b", "2", "-b", "3"};
    }
    if (!jpeg && layout.bands == 1) return {"-b", "1", "-b", "1", "-b", "1"};
    if (!jpeg && layout.bands == 2) return {"-b", "1", "-b", "1", "-b", "1", "-b", "2"};
    return {};
}

}  // namespace

std::string KnownConverter(const std::string& program) {
    const std::string path = SystemPath(program);
    std::string file = LCase(std::string_view(path).substr(path.rfind('/') + 1));
    if (file.ends_with(".exe")) file.resize(file.size() - 4);
    for (const char* name : {"gdal_translate", "convert", "magick", "gm", "vips"}) {
        if (!file.starts_with(name)) continue;
        std::string_view version = std::string_view(file).substr(std::strlen(name));
        if (version.starts_with('-')) version.remove_prefix(1);
        if (version.starts_with("im")) version.remove_prefix(2);
        const bool isVersion = !version.empty() && version[0] >= '0' && version[0] <= '9';
        if (file == name || isVersion) return name;
    }
    return {};
}

std::vector<std::string> ConverterArguments(const Conversion& conversion) {
    const auto& [program, source, target, quality, layout] = conversion;
    const std::string name = KnownConverter(program);
    const std::string number = std::to_string(quality);
    const std::string format = LCase(AfterLast(target, '.'));
    const bool losses = HasLosses(format);
    std::vector<std::string> arguments;
    const auto add = [&](const std::vector<std::string>& more) {
        arguments.insert(arguments.end(), more.begin(), more.end());
    };
    if (name == "gdal_translate") {
        add({"-q", "--config", "GDAL_PAM_ENABLED", "NO"});
        if (losses) add({"-co", "QUALITY=" + number});
        if (layout) add(TranslatorBands(*layout, format));
        add({source, target});
    } else if (name == "convert" || name == "magick" || name == "gm") {
        if (name == "gm") add({"convert"});
        add({source + "[0]"});
        if (losses) add({"-quality", number});
        add({target});
    } else if (name == "vips") {
        add({"copy", source, losses ? target + "[Q=" + number + "]" : target});
    } else {
        add({source, target, number});
    }
    return arguments;
}

}  // namespace orvo::utility
