// The utility services, and workspaces.
#include <fstream>

#include "platform/Vector.h"
#include "platform/windows/Platform.h"
#include "platform/windows/imaging/Image.h"
#include "platform/windows/system/Win32.h"
#include "support/SystemPath.h"
#include "tests/windows/Checks.h"

namespace orvo::checks {
namespace {

void CheckNames(const platform::Platform& platform, const Folder& folder) {
    const auto tools = platform.newUtilTools();
    std::ofstream(DiskPath(folder.File("iä_2.jpg"))) << "x";
    Equal(tools->GetFreeFileName(folder.Path(), "iä", {"png", "jpg"}), folder.File("iä_1"));
    Equal(tools->GetFreeFileName(folder.Path(), "iä", {"png", "jpg"}), folder.File("iä_3"));
    Equal(platform.newUtilTools()->GetFreeFileName(folder.Path(), "iä", {"png"}), folder.File("iä_4"));
    Fails(76, "nowhere", [&] { tools->GetFreeFileName(folder.File("nowhere"), "i", {"png"}); });
    for (const auto& [name, offset] :
         {std::pair{L"de", 0}, std::pair{L"en", 10000}, std::pair{L"fr", 20000}}) {
        ::SetEnvironmentVariableW(windows::kLanguageVariable, name);
        Equal(tools->GetLanguageOffset(), offset);
    }
}

void CheckConversion(const platform::Platform& platform, const Folder& folder) {
    windows::Pixels pixels(windows::Pixels::Kind::Bgr, 6, 6);
    pixels.At(4, 3)[2] = 200;
    windows::WriteImage(folder.File("s.png"), windows::ImageFormat::Png, pixels, 0);
    const auto tools = platform.newUtilTools();
    const auto convert = platform.newRasterConvert();
    const auto entries = folder.Entries();
    std::string target = tools->GetFreeFileName(folder.Path(), "k", {"tif"});
    const PixelWindow window{3, 2, 2, 2};
    Check(convert->ConvertExtern(Self(), folder.File("s.png"), target, 75, &window, true));
    Equal(target, folder.File("k_1.tif"));
    windows::ImageSource cut(target);
    Equal(cut.Columns(), 2);
    Equal(static_cast<int>(cut.Read(1, 1, 1, 1).At(0, 0)[2]), 200);
    Check(!convert->ConvertExtern(Self(), folder.File("s.png"), target, 75, &window, true), "never replaced");
    target = folder.File("whole.png");
    Check(convert->ConvertExtern(Self(), folder.File("s.png"), target, 75, nullptr, true));
    target = folder.File("t.png");
    Check(!convert->ConvertExtern("no-such-program", folder.File("s.png"), target, 75, &window, true));
    Check(!convert->ConvertExtern("", folder.File("s.png"), target, 75, &window, true));
    Equal(folder.Entries(), entries + 2);
}

void CheckWorkspace(const platform::Platform& platform, const Folder& folder) {
    const auto factory = platform.newRasterWorkspaceFactory();
    const auto workspace = As<IRasterWorkspace>(factory->OpenFromFile(folder.Path(), 0));
    Equal(workspace->PathName(), folder.Path());
    Equal(workspace->OpenRasterDataset("s.png")->FormatName(), "PNG");
    Fails(53, "none.png", [&] { static_cast<void>(workspace->OpenRasterDataset("none.png")); });
    Fails(76, "nowhere", [&] { static_cast<void>(factory->OpenFromFile(folder.File("nowhere"), 0)); });
}

}  // namespace

void CheckUtility() {
    const Folder folder(u8"Orvo Dienste ä");
    const auto platform = windows::MakePlatform();
    CheckNames(platform, folder);
    CheckConversion(platform, folder);
    CheckWorkspace(platform, folder);
}

}  // namespace orvo::checks
