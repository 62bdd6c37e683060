// Conversion with real programs: good ones, bad ones, and what they leave behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "platform/RuntimeError.h"
#include "platform/fake/World.h"
#include "platform/memory/Envelope.h"
#include "platform/posix/ProcessRunner.h"
#include "platform/utility/Converter.h"
#include "platform/utility/Services.h"
#include "tests/adapters/TinyRasters.h"

namespace orvo::utility {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Strings = std::vector<std::string>;

class UtilityConvert : public testing::Test {
  protected:
    UtilityConvert() {
        settings.onFailure = [this](const Request& asked, const std::string& reason) {
            failures.push_back(asked.target + " | " + reason);
        };
        settings.onWritten = [this](const WrittenImage& image) { written.push_back(image); };
        settings.interrupted = [this] { return interrupted && interrupted(); };
        services = MakeServices(
            settings, [] { return std::make_shared<TinyRasters>(); },
            std::make_shared<posix::ProcessRunner>());
        tools = services.newUtilTools();
        convert = services.newRasterConvert();
    }
    bool Convert(const std::string& program, std::string& target, Integer quality = 0) {
        return convert->ConvertExtern(program, source, target, quality, &window, true);
    }
    std::string FreeName(const std::vector<std::string>& extensions) {
        return tools->GetFreeFileName(folder.Path(), "i", extensions);
    }
    std::string Export(const std::string& target) {
        const auto envelope = std::make_shared<memory::Envelope>();
        envelope->XMin(5);
        envelope->XMax(6);
        envelope->YMin(7);
        envelope->YMax(9);
        const auto layer = fake::MakeRasterLayer(fake::World::Make(), {});
        return convert->ExportRasterWindow(layer, target, 0, nullptr, envelope, 20, 40);
    }

    const TempFolder folder{"-out 'Ö\" %d:[0] @x"};
    const TempFolder elsewhere{"png:source %d"};
    const std::string source = elsewhere.Put("s [0]:%d.tif", TinyTiff(100, 80));
    PixelWindow window{70, 60, 64, 16};
    std::vector<std::string> failures;
    std::vector<WrittenImage> written;
    std::function<bool()> interrupted;
    Settings settings;
    Services services;
    std::shared_ptr<IUtilTools> tools;
    std::shared_ptr<IRasterConvert> convert;
};

TEST(UtilityConverter, KnowsProgramsByTheirFileName) {
    const auto form = [](const char* program, const char* target) {
        std::string line;
        for (const auto& a : ConverterArguments({program, "./s.tif", target, 80, {}})) line += a + " ";
        return line;
    };
    const std::string gdal = "-q --config GDAL_PAM_ENABLED NO ";
    const std::string other = "./s.tif ./t.jpg 80 ";
    const std::tuple<const char*, const char*, std::string> cases[] = {
        {"gdal_translate", "./t.jpg", gdal + "-co QUALITY=80 ./s.tif ./t.jpg "},
        {"/opt/my gdal/gdal_translate", "./t.png", gdal + "./s.tif ./t.png "},
        {"convert", "./t.JPG", "./s.tif[0] -quality 80 ./t.JPG "},
        {"convert-im6.q16", "./t.png", "./s.tif[0] ./t.png "},
        {"C:\\Magick\\MAGICK.EXE", "./t.webp", "./s.tif[0] -quality 80 ./t.webp "},
        {"/usr/bin/gm", "./t.jpeg", "convert ./s.tif[0] -quality 80 ./t.jpeg "},
        {"vips-8.14", "./t.jpg", "copy ./s.tif ./t.jpg[Q=80] "},
        {"vips", "./t.gif", "copy ./s.tif ./t.gif "},
        {"convert.sh", "./t.jpg", other},
        {"myconvert", "./t.jpg", other},
        {"/opt/vips/tool", "./t.jpg", other},
        {"gm-tiles", "./t.jpg", other},
    };
    for (const auto& [program, target, expected] : cases)
        EXPECT_EQ(form(program, target), expected) << program;
}

TEST_F(UtilityConvert, WorksWithTheRealPrograms) {
    const std::pair<const char*, std::string> formats[] = {
        {"png", "\x89PNG"}, {"jpg", "\xFF\xD8\xFF"}, {"gif", "GIF8"}, {"tif", "II*"}};
    int found = 0;
    for (const char* program :
         {"/usr/bin/convert", "/usr/bin/gm", "/usr/bin/vips", "/usr/bin/gdal_translate"}) {
        if (!std::filesystem::exists(program)) continue;
        ++found;
        SCOPED_TRACE(program);
        for (const auto& [extension, magic] : formats) {
            std::string target = tools->GetFreeFileName(folder.Path(), "-i %d:", {extension});
            EXPECT_TRUE(Convert(program, target));
            EXPECT_THAT(ReadFile(target), StartsWith(magic));
        }
        const auto size = [&](Integer quality) {
            std::string target = FreeName({"x", "y"}) + ".jpg";
            EXPECT_TRUE(convert->ConvertExtern(program, source, target, quality, nullptr, true));
            return ReadFile(target).size();
        };
        EXPECT_LT(size(10), size(98));
        EXPECT_EQ(size(0), size(75));
    }
    EXPECT_THAT(failures, IsEmpty());
    EXPECT_EQ(folder.Names().size(), static_cast<std::size_t>(found) * 8) << "side files";
    if (found == 0) GTEST_SKIP() << "none of the programs is installed";
}

/// The number of colour components in a JPEG's frame header.
int JpegComponents(const std::string& file) {
    const std::string bytes = ReadFile(file);
    const auto frame = bytes.find("\xFF\xC0");
    return frame == std::string::npos ? 0 : bytes.at(frame + 9);
}

TEST_F(UtilityConvert, GivesJpegsTheColoursOfTheirSource) {
    const std::string translate = "/usr/bin/gdal_translate";
    if (!std::filesystem::exists(translate)) GTEST_SKIP() << "the translator is not installed";
    const std::tuple<const char*, Strings, int> sources[] = {
        {"grey.tif", {}, 1},
        {"greyAlpha.tif", {"-b", "1", "-b", "1", "-colorinterp_2", "alpha"}, 1},
        {"rgb.tif", {"-b", "1", "-b", "1", "-b", "1", "-co", "PHOTOMETRIC=RGB"}, 3},
        {"rgba.tif",
         {"-b", "1", "-b", "1", "-b", "1", "-b", "1", "-co", "ALPHA=YES", "-co", "ENDIANNESS=BIG"},
         3},
        {"palette.tif", {"-b", "1", "-co", "PHOTOMETRIC=PALETTE"}, 3},
    };
    posix::ProcessRunner runner;
    for (auto [name, arguments, components] : sources) {
        SCOPED_TRACE(name);
        arguments.insert(arguments.end(), {source, elsewhere / name});
        ASSERT_EQ(runner.Run(translate, arguments, "", {}).exitCode, 0);
        std::string target = FreeName({"jpg"});
        EXPECT_TRUE(convert->ConvertExtern(translate, elsewhere / name, target, 0, nullptr, true));
        EXPECT_EQ(JpegComponents(target), components);
    }
    EXPECT_THAT(failures, IsEmpty());
}

TEST_F(UtilityConvert, LeavesNothingOfAFailure) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"crash", "echo half > $2; echo at pixel 7 >&2; kill -SEGV $$", "signal 11"},
        {"half", "echo half > $2; echo half > $2.aux.xml; echo cannot go on; exit 3",
         "exit code 3: cannot go on"},
        {"nothing", "exit 0", "wrote no image"},
        {"many", "echo 0 > ./tile-0.png; echo 1 > ./tile-1.png", "wrote no image"},
        {"empty", ": > $2", "wrote an empty image"},
        {"folder", "mkdir $2", "wrote no image"},
    };
    std::string target = FreeName({"png"});
    const std::string name = target;
    for (const auto& [program, commands, reason] : cases) {
        EXPECT_FALSE(Convert(elsewhere.PutScript(program, commands), target)) << program;
        EXPECT_THAT(failures.back(),
                    AllOf(StartsWith(name + ".png | "), HasSubstr(program), HasSubstr(reason)));
        EXPECT_THAT(folder.Names(), ElementsAre(".i_1.reserved")) << program;
    }
    EXPECT_FALSE(Convert(elsewhere / "missing", target));
    EXPECT_THAT(failures.back(), AllOf(HasSubstr("missing could not be started"), HasSubstr("No such file")));
    EXPECT_EQ(target, name);
    EXPECT_FALSE(convert->ConvertExtern("convert", elsewhere / "broken.tif", target, 0, &window, true));
    EXPECT_THAT(failures.back(), EndsWith("the source cannot be read"));
    EXPECT_FALSE(convert->ConvertExtern("convert", elsewhere / "none.tif", target, 0, nullptr, true));
    EXPECT_EQ(Export(folder / "broken.png"), "");
    EXPECT_THAT(failures.back(), EndsWith("the layer cannot be read"));
    EXPECT_THAT(folder.Names(), ElementsAre(".i_1.reserved"));
    EXPECT_THAT(written, IsEmpty());
}

TEST_F(UtilityConvert, RefusesTargetsThatCannotBeAndHandsOnWhatIs) {
    const std::string show = elsewhere.PutScript("show", "echo $# $1 $2 $3 > \"$2\"");
    for (std::string target : {folder / "no extension", folder / "x.p%d", folder / "none/x.png"})
        EXPECT_FALSE(Convert(show, target));
    EXPECT_EQ(failures.size(), 3U);
    std::string target = FreeName({"jpg"});
    EXPECT_FALSE(Convert("", target));
    EXPECT_EQ(failures.size(), 3U);
    EXPECT_TRUE(Convert(show, target, 120));
    EXPECT_EQ(ReadFile(target), "3 ./source.tif ./tile.jpg 100\n");
}

TEST_F(UtilityConvert, AnInterruptionEndsTheProgramAndLeavesNothing) {
    const std::string hang = elsewhere.PutScript("hang", "echo half > $2; touch $2.aux.xml; sleep 30");
    std::string target = FreeName({"png"});
    const auto start = std::chrono::steady_clock::now();
    const auto elapsed = [start] { return std::chrono::steady_clock::now() - start; };
    interrupted = [&] { return elapsed() > std::chrono::milliseconds(300); };
    for (int i = 0; i < 2; ++i) {
        try {
            Convert(hang, target);
            ADD_FAILURE();
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), 18);
        }
    }
    EXPECT_THROW(Export(target), RuntimeError);
    EXPECT_LT(elapsed(), std::chrono::seconds(10));
    EXPECT_THAT(failures, IsEmpty());
    tools.reset();
    EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(UtilityConvert, TellsWhatAnImageShows) {
    const std::string copy = elsewhere.PutScript("copy", "cat $1 > $2");
    std::string tile = FreeName({"png"});
    ASSERT_TRUE(Convert(copy, tile));
    EXPECT_EQ(written.back().window, (PixelWindow{70, 60, 30, 16}));  // cut back at the raster's right edge
    const std::string name = FreeName({"tif", "png"});
    const std::string tiff = Export(name + ".png");
    EXPECT_EQ(tiff, name + ".tif");
    EXPECT_EQ(written.back().path, tiff);
    // Another object of the library turns the export into its final format.
    std::string web = services.newUtilTools()->GetFreeFileName(folder.Path(), "i", {"jpg", "png"}) + ".png";
    ASSERT_TRUE(services.newRasterConvert()->ConvertExtern(copy, tiff, web, 0, nullptr, true));
    EXPECT_EQ(written.back().path, web);
    ASSERT_TRUE(written.back().extent);
    EXPECT_EQ(written.back().extent->xMax, 6);
    EXPECT_EQ(written.back().extent->yMin, 7);
    EXPECT_EQ(written.back().extent->height, 40);
    EXPECT_FALSE(written.back().window);
    EXPECT_THAT(folder.Names(), ElementsAre("i_1.png", "i_2.tif", "i_3.png"));
}

}  // namespace
}  // namespace orvo::utility
