// clsTileImage: progress texts for the host's status object.
#include "errorreport/Procedure.h"
#include "platform/RuntimeError.h"
#include "tileimage/clsTileImage.h"

namespace orvo {
namespace {
constexpr ProcedureText kCreateMessageText{
    "[clsTileImage] Private Sub CreateMessageText(ByVal strText As String, Optional ByVal lngMaxValue As "
    "Long = "
    "-1, Optional ByVal blnStep As Boolean = False)",
    "clsTileImage", "CreateMessageText"};
}  // namespace

void clsTileImage::CreateMessageText(const std::string& strText, Long lngMaxValue, bool blnStep) {
    Procedure<void>(kCreateMessageText).Run([&](Statements& run) {
        if (run.Test([&] { return statusObject_ == nullptr; })) return;
        if (run.Test([&] { return lngMaxValue == -1; })) {
            run([&] { Object(statusObject_).ShowMessage(strText); });
        } else {
            run([&] { Object(statusObject_).ShowProgress(strText, lngMaxValue, blnStep); });
        }
    });
}

}  // namespace orvo
