// What every utility library does: free names, conversion, export.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>

#include "platform/fake/World.h"
#include "platform/memory/Envelope.h"
#include "platform/posix/ProcessRunner.h"
#include "platform/utility/Library.h"
#include "tests/adapters/TinyRasters.h"

namespace orvo {
namespace {

using testing::StartsWith;

struct Utility {
    std::shared_ptr<IUtilTools> tools;
    std::shared_ptr<IRasterConvert> convert;
    std::string folder;  ///< without separator at its end
    std::string program;
    std::string source;  ///< an image beside which the tiles are written
    std::function<bool(const std::string&)> exists;
    std::function<void(const std::string&)> put;
    std::shared_ptr<void> behind;
};

Utility RealUtility() {
    auto folder = std::make_shared<TempFolder>("-q 'Ö\" %d:[0]");
    utility::Settings settings;
    settings.languageOffset = 20000;
    const auto services = utility::MakeServices(
        settings, [] { return std::make_shared<TinyRasters>(); }, std::make_shared<posix::ProcessRunner>());
    return {services.newUtilTools(),
            services.newRasterConvert(),
            folder->Path(),
            folder->PutScript("copy", "cat \"$1\" > \"$2\""),
            folder->Put("source.tif", TinyTiff(100, 80)),
            [](const std::string& path) { return std::filesystem::exists(path); },
            [](const std::string& path) { std::ofstream(path) << "x"; },
            folder};
}

Utility FakeUtility() {
    const auto world = fake::World::Make();
    world->languageOffset = 20000;
    world->PutFile("C:\\out\\source.tif", "image");
    const auto platform = world->MakePlatform();
    return {platform.newUtilTools(),
            platform.newRasterConvert(),
            "C:\\out",
            "converter",
            "C:\\out\\source.tif",
            [world](const std::string& path) { return world->HasFile(path); },
            [world](const std::string& path) { world->PutFile(path, "x"); },
            world};
}

class UtilityContract : public testing::TestWithParam<Utility (*)()> {
  protected:
    std::string FreeName(const std::vector<std::string>& extensions) {
        return utility.tools->GetFreeFileName(utility.folder, "i142507", extensions);
    }
    bool Convert(const std::string& source, std::string& target, const PixelWindow* window) {
        return utility.convert->ConvertExtern(utility.program, source, target, 75, window, true);
    }
    static Long FailureOf(const std::function<void()>& call) {
        try {
            call();
        } catch (const RuntimeError& error) {
            return error.Number();
        }
        return 0;
    }
    Utility utility = GetParam()();
    const std::string stem = utility.folder + (utility.folder.starts_with('/') ? "/" : "\\") + "i142507_";
};

INSTANTIATE_TEST_SUITE_P(All, UtilityContract, testing::Values(&RealUtility, &FakeUtility),
                         [](const auto& param) { return param.index == 0 ? "Real" : "Fake"; });

TEST_P(UtilityContract, GivesEachNameOnceInAFolderThatIsThere) {
    EXPECT_EQ(utility.tools->GetLanguageOffset(), 20000);
    utility.put(stem + "2.png");
    utility.put(stem + "3.gif");
    utility.put(stem + "4.bmp");
    EXPECT_EQ(FreeName({"png"}), stem + "1");
    EXPECT_EQ(FreeName({"jpg", "png", "gif"}), stem + "4");
    EXPECT_EQ(FreeName({"bmp"}), stem + "5");
    EXPECT_EQ(utility.tools->GetFreeFileName(utility.folder, "other", {"png"}),
              stem.substr(0, stem.size() - 8) + "other_1");
    EXPECT_EQ(FailureOf([&] { utility.tools->GetFreeFileName(utility.folder + "/missing", "i", {"png"}); }),
              76);
}

TEST_P(UtilityContract, ConvertsAWindowOrAWholeImageAndReplacesNone) {
    const PixelWindow window{10, 20, 30, 40};
    std::string target = FreeName({"png"});
    EXPECT_FALSE(utility.convert->ConvertExtern("", utility.source, target, 0, nullptr, true));
    EXPECT_FALSE(Convert(utility.source + ".none", target, nullptr));
    EXPECT_EQ(target, stem + "1");
    EXPECT_FALSE(utility.exists(target + ".png"));
    EXPECT_TRUE(Convert(utility.source, target, &window));
    EXPECT_EQ(target, stem + "1.png") << "completed";
    EXPECT_TRUE(utility.exists(target));
    EXPECT_FALSE(Convert(utility.source, target, nullptr)) << "it stands";
    target = FreeName({"jpg", "png", "gif"}) + ".png";
    EXPECT_TRUE(Convert(utility.source, target, nullptr));
    EXPECT_EQ(target, stem + "2.png") << "as given";
    EXPECT_TRUE(utility.exists(target));
}

TEST_P(UtilityContract, ExportsUnderTheNameItReturns) {
    const auto envelope = std::make_shared<memory::Envelope>();
    const auto world = fake::World::Make();
    const auto layer = fake::MakeRasterLayer(world, {});
    const std::string target = FreeName({"tif", "png"});
    const auto written =
        utility.convert->ExportRasterWindow(layer, target + ".png", 0, nullptr, envelope, 9, 9);
    EXPECT_THAT(written, StartsWith(target + "."));
    EXPECT_TRUE(utility.exists(written));
    const auto exportOf = [&](const auto& some, const auto& part) {
        utility.convert->ExportRasterWindow(some, target + ".png", 0, nullptr, part, 9, 9);
    };
    EXPECT_EQ(FailureOf([&] { exportOf(layer, nullptr); }), 91);
    EXPECT_EQ(FailureOf([&] { exportOf(nullptr, envelope); }), 91);
}

}  // namespace
}  // namespace orvo
