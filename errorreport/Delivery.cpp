// The error dialog's report: its log, and the four ways to hand it on.
#include "errorreport/Ferrow.h"
#include "errorreport/Report.h"
#include "errorreport/Version.h"
#include "platform/Platform.h"
#include "support/Strings.h"
#include "support/Text.h"

namespace orvo {
namespace {

constexpr const char* kLineEnd = "\r\n";

ITextFiles& Files() {
    return Object(platform::Current().textFiles);
}

/// The component's file with that extension in the folder for temporary files. A folder that is not known
/// gives the root.
std::string ReportPath(const char* extension) {
    std::string folder = Object(platform::Current().operatingSystem).TempFolder();
    if (!folder.ends_with('\\')) folder += '\\';
    return folder + kComponentName + extension;
}

}  // namespace

void Ferrow::BuildReport(std::string& text) const {
    IClock& clock = Object(platform::Current().clock);
    ReportFacts facts;
    facts.time = clock.Local(clock.Seconds());
    facts.system = Object(platform::Current().operatingSystem).GetVersion();
    text = ReportText(form_, callStack_, facts);
}

void Ferrow::AppendReportLog() const {
    std::string report;
    BuildReport(report);
    Files().Append(ReportPath(".EPT"), report + kLineEnd);
}

void Ferrow::cmdProtocol_Click(Integer index) {
    ShowCallStack();
    std::string report;
    BuildReport(report);
    switch (index) {
        case 0:
            Desktop().Print(PrinterLines(report + kLineEnd));
            break;
        case 1:
            SaveReport(report);
            break;
        case 2:
            MailReport(report);
            break;
        case 3:
            Desktop().CopyToClipboard(report);
            Desktop().Open(strWeb_);
            break;
        default:
            break;
    }
}

void Ferrow::SaveReport(const std::string& report) const {
    const std::string path = ReportPath(".ERR");
    if (Files().Exists(path)) {
        const auto answer =
            Desktop().MessageBox("'" + path + Text(8004), "", MessageIcon::None, MessageButtons::YesNo);
        if (answer == MessageAnswer::No) return;
    }
    Files().Replace(path, report + kLineEnd);
    Desktop().MessageBox(Text(8005) + path + Text(8006), "", MessageIcon::None, MessageButtons::OK);
}

void Ferrow::MailReport(const std::string& report) const {
    // Line by line: the first text that is missing is the one that fails.
    std::string message;
    for (const Integer id : {Integer{8007}, Integer{8008}}) message += Text(id) + kLineEnd;
    message += kLineEnd;
    for (const Integer id : {Integer{8009}, Integer{8010}}) message += Text(id) + kLineEnd;
    message += Text(8011);
    Desktop().MessageBox(message, "", MessageIcon::None, MessageButtons::OK);
    Desktop().CopyToClipboard(report);
    Desktop().Open("mailto:" + std::string(Trim(strMail_)));
}

}  // namespace orvo
