// Conversion with real programs, good ones and bad ones, what they leave behind, and free names on the disk.
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

#include <chrono>

#include "platform/posix/ProcessRunner.h"
#include "platform/utility/Converter.h"
#include "platform/utility/Services.h"
#include "platform/utility/UtilTools.h"
#include "tests/Failure.h"
#include "tests/Rows.h"
#include "tests/adapters/GdalRasters.h"

namespace orvo::utility {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct UtilityConvert : testing::Test {
    UtilityConvert() {
        settings.onFailure = [this](const Request& asked, const std::string& reason) {
            failed = asked;
            failures.push_back(asked.target + " | " + reason);
        };
        settings.onWritten = [this](const WrittenImage& image) { written.push_back(image); };
        settings.interrupted = [this] { return interrupted && interrupted(); };
        services = MakeServices(settings, gdal::NewRasterIO, std::make_shared<posix::ProcessRunner>());
        tools = services.newUtilTools();
        convert = services.newRasterConvert();
        WriteRaster(source, {.width = 100, .height = 80});
    }
    bool Convert(const std::string& program, std::string& target, Integer quality = 0) {
        return convert->ConvertExtern(program, source, target, quality, &window, true);
    }
    std::string FreeName(const std::vector<std::string>& extensions) {
        return tools->GetFreeFileName(folder.Path(), "i", extensions);
    }
    /// 10 × 10 cells as 20 × 40 pixels, from as many map units to the right of the raster's left edge.
    std::string Export(const std::string& target, double offset = 10) {
        const auto envelope = std::make_shared<memory::Envelope>();
        envelope->XMin(1000 + offset), envelope->XMax(1020 + offset);
        envelope->YMin(4940), envelope->YMax(4970);
        return convert->ExportRasterWindow(gdal::OpenRasterLayer(source), target, 0, nullptr, envelope, 20,
                                           40);
    }

    const TempFolder folder{"-out 'Ö\" %d:[0] @x"};
    const TempFolder elsewhere{"png:source %d"};
    const std::string source = elsewhere / "s [0]:%d.tif";
    PixelWindow window{70, 60, 64, 16};
    std::vector<std::string> failures;
    Request failed;
    std::vector<WrittenImage> written;
    std::function<bool()> interrupted;
    Settings settings;
    Services services;
    std::shared_ptr<IUtilTools> tools;
    std::shared_ptr<IRasterConvert> convert;
};

TEST_F(UtilityConvert, KnowsProgramsByTheirFileName) {
    for (const char* row : {"/opt/my gdal/gdal_translate|-q", "C:\\Magick\\MAGICK.EXE|./s.tif[0]",
                            "convert-im6.q16|./s.tif[0]", "/usr/bin/gm|convert", "vips-8.14|copy",
                            "convert.sh|./s.tif", "/opt/vips/tool|./s.tif", "gm-tiles|./s.tif"})
        EXPECT_EQ(ConverterArguments({Cells(row)[0], "./s.tif", "./t.jpg", 80, {}}).front(), Cells(row)[1]);
}

TEST_F(UtilityConvert, WorksWithTheRealPrograms) {
    const std::pair<const char*, std::string> formats[] = {
        {"png", "\x89PNG"}, {"jpg", "\xFF\xD8\xFF"}, {"gif", "GIF8"}, {"tif", "II*"}};
    for (const char* program :
         {"/usr/bin/convert", "/usr/bin/gm", "/usr/bin/vips", "/usr/bin/gdal_translate"}) {
        if (!std::filesystem::exists(program)) continue;
        SCOPED_TRACE(program);
        const std::size_t before = folder.Names().size();
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
        EXPECT_EQ(folder.Names().size(), before + 8) << "side files";
    }
    const std::string translate = "/usr/bin/gdal_translate";
    if (!std::filesystem::exists(translate)) GTEST_SKIP() << "the translator is not installed";
    for (const auto& [spec, components] : {std::pair(RasterSpec{}, 1),
                                           {{.bands = 2, .alpha = true}, 1},
                                           {{.bands = 3}, 3},
                                           {{.bands = 4, .alpha = true, .options = {"ENDIANNESS=BIG"}}, 3},
                                           {{.palette = {{9, 8, 7, 255}, {1, 2, 3, 255}}}, 3}}) {
        const std::string file = elsewhere / "colours.tif";
        WriteRaster(file, spec);
        std::string target = FreeName({"jpg"});
        EXPECT_TRUE(convert->ConvertExtern(translate, file, target, 0, nullptr, true));
        EXPECT_EQ(Load(target).bands, components) << spec.bands;
    }
    EXPECT_TRUE(failures.empty());
}

TEST_F(UtilityConvert, LeavesNothingOfAFailure) {
    const std::string wrongSize = "cat '" + source + "' > $2";
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"crash", "echo half > $2; echo at pixel 7 >&2; kill -SEGV $$", "signal 11"},
        {"half", "echo half > $2; echo half > $2.aux.xml; echo cannot go on; exit 3",
         "exit code 3: cannot go on"},
        {"many", "echo 0 > ./tile-0.png; echo 1 > ./tile-1.png", "wrote no image"},
        {"empty", ": > $2", "wrote an empty image"},
        {"folder", "mkdir $2", "wrote no image"},
        {"rubbish", "head -c 999 /dev/zero > $2", "wrote no image of the tile"},
        {"cut", "head -c 400 $1 > $2", "wrote no image of the tile"},
        {"size", wrongSize, "100 x 80 pixels instead of 30 x 16"},
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
    for (const std::string& image : {elsewhere.Put("broken.tif", "no image"), elsewhere / "none.tif"}) {
        EXPECT_FALSE(convert->ConvertExtern("convert", image, target, 0, &window, true));
        EXPECT_THAT(failures.back(), HasSubstr(image));
    }
    EXPECT_EQ(Export(folder / "t.png", 9999), "");
    EXPECT_THAT(failures.back(), HasSubstr("no area on the raster"));
    EXPECT_TRUE(target == name && written.empty());
    EXPECT_THAT(folder.Names(), ElementsAre(".i_1.reserved"));
}

TEST_F(UtilityConvert, RefusesTargetsThatCannotBeAndHandsOnWhatIs) {
    const std::string show = elsewhere.PutScript("show", "echo $# $1 $2 $3 > \"$2\"");
    for (std::string target : {folder / "no extension", folder / "x.p%d", folder / "none/x.png"})
        EXPECT_FALSE(Convert(show, target));
    std::string target = FreeName({"txt"});
    EXPECT_FALSE(Convert("", target));
    EXPECT_EQ(failures.size(), 3U);
    EXPECT_TRUE(Convert(show, target, 120));
    EXPECT_EQ(ReadFile(target), "3 ./source.tif ./tile.txt 100\n");
    const std::string late = "echo theirs > ../i_2.png; echo ours > $2";
    target = FreeName({"png"});
    EXPECT_FALSE(Convert(elsewhere.PutScript("late", late), target)) << "somebody else was faster";
    EXPECT_EQ(ReadFile(folder / "i_2.png"), "theirs\n");
}

TEST_F(UtilityConvert, AnInterruptionEndsTheProgramAndLeavesNothing) {
    const std::string hang = elsewhere.PutScript("hang", "echo half > $2; touch $2.aux.xml; sleep 30");
    std::string target = FreeName({"png"});
    const auto start = std::chrono::steady_clock::now();
    const auto elapsed = [start] { return std::chrono::steady_clock::now() - start; };
    interrupted = [&] { return elapsed() > std::chrono::milliseconds(300); };
    for (int i = 0; i < 2; ++i) EXPECT_EQ(NumberOf([&] { Convert(hang, target); }), 18);
    EXPECT_EQ(NumberOf([&] { Export(target); }), 18);
    EXPECT_LT(elapsed(), std::chrono::seconds(10));
    tools.reset();
    EXPECT_TRUE(failures.empty() && folder.Names().empty());
}

TEST_F(UtilityConvert, TellsWhichPartOfItsSourceAnImageOrAFailureIsAbout) {
    const std::string copy = elsewhere.PutScript("copy", "cat $1 > $2");
    const std::string fail = elsewhere.PutScript("fail", "exit 1");
    const auto isExport = [](const std::optional<ImageExtent>& e) {
        return e && std::tie(e->xMin, e->yMin, e->xMax, e->yMax) == std::tuple(1010, 4940, 1030, 4970) &&
               e->width == 20 && e->height == 40;
    };
    std::string tile = FreeName({"png"});
    EXPECT_FALSE(Convert(fail, tile));
    EXPECT_EQ(failed.window, window);
    ASSERT_TRUE(Convert(copy, tile));
    EXPECT_EQ(written.back().asked.window, window);
    EXPECT_EQ(written.back().window, (PixelWindow{70, 60, 30, 16}));  // cut back at the raster's right edge
    EXPECT_EQ(Export(tile), "") << "the name is taken";
    EXPECT_TRUE(isExport(failed.extent));
    const std::string tiff = Export(FreeName({"tif", "png"}) + ".webp");
    EXPECT_EQ(tiff, folder / "i_2.tif");
    EXPECT_TRUE(isExport(written.back().extent));
    // Another object of the library turns the export into its final format.
    std::string web = services.newUtilTools()->GetFreeFileName(folder.Path(), "i", {"jpg", "png"}) + ".png";
    const auto other = services.newRasterConvert();
    EXPECT_FALSE(other->ConvertExtern(fail, tiff, web, 0, nullptr, true));
    EXPECT_TRUE(isExport(failed.extent));
    ASSERT_TRUE(other->ConvertExtern(copy, tiff, web, 0, nullptr, true));
    EXPECT_TRUE(isExport(written.back().extent) && !written.back().window && written.back().path == web);
    EXPECT_THAT(folder.Names(), ElementsAre("i_1.png", "i_2.tif", "i_3.png"));
}

/// What asking for a name fails with.
std::string RefusalIn(const std::string& folder, const std::string& extension = "png") {
    return FailureOf(
        [&] { UtilTools(std::make_shared<SharedState>(), {}).GetFreeFileName(folder, "i", {extension}); });
}

/// Runs a check in a process of its own; what it returns must be below 256.
int InOtherProcess(const std::function<int()>& check) {
    const pid_t pid = ::fork();
    if (pid == 0) ::_exit(check());
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(UtilityNames, HoldsANameUntilItsFileStandsOrItsObjectEnds) {
    const TempFolder folder;
    const auto state = std::make_shared<SharedState>();
    UtilTools run(state, {});
    {
        UtilTools once(state, {});
        const std::string first = run.GetFreeFileName(folder.Path(), "i", {"png"});
        const std::string second = once.GetFreeFileName(folder.Path(), "i", {"jpg", "gif"});
        EXPECT_TRUE(state->reservations.OnlyExtension(first) == "png" &&
                    !state->reservations.OnlyExtension(second));
    }
    EXPECT_THAT(folder.Names(), ElementsAre(".i_1.reserved"));
    EXPECT_EQ(run.GetFreeFileName(folder.Path(), "i", {"png"}), folder / "i_3") << "never looked at again";
}

TEST(UtilityNames, NamesTheFolderThatRefusesAndTheDiskThatIsFull) {
    const TempFolder folder;
    EXPECT_THAT(RefusalIn(folder / "none"), AllOf(StartsWith("76 "), HasSubstr(folder / "none")));
    EXPECT_THAT(RefusalIn(folder.Put("file", "")), StartsWith("76 "));
    EXPECT_THAT(RefusalIn(folder.Path(), std::string(255, 'x')), StartsWith("75 "));
    EXPECT_THAT(folder.Names(), ElementsAre("file"));
    EXPECT_EQ(InOtherProcess([&] {
                  ::chmod(folder.Path().c_str(), 0500);
                  if (::geteuid() == 0 && ::seteuid(65534) != 0) return 0;
                  return std::stoi(RefusalIn(folder.Path()));
              }),
              75);
    const int number = InOtherProcess([&] {
        const int spaces = ::geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
        if (::unshare(spaces) != 0) return 255;
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
        if (::mount("tmpfs", folder.Path().c_str(), "tmpfs", 0, "nr_inodes=3") != 0) return 255;
        for (int i = 0; i < 5; ++i) folder.Put("file" + std::to_string(i), "");
        return std::stoi(RefusalIn(folder.Path()));
    });
    if (number == 255) GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_EQ(number, 61);
}

}  // namespace
}  // namespace orvo::utility
