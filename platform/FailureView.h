// What the error dialog says, for those who show it without a window.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/Dialog.h"

namespace orvo {

/// The texts of one failure. An ampersand marks the letter behind it as access key.
struct FailureView {
    struct Row {
        std::string caption;
        std::string text;
    };
    std::string title;
    std::string comment;
    std::vector<Row> rows;  ///< failure, module, procedure, line
    std::string programInfoCaption;
    std::string programInfo;
    std::string protocolCaption;
    std::array<std::string, 4> protocol;  ///< print, save, e-mail, web
    std::string callStackCaption;
    std::vector<std::string> callStack;  ///< newest first
    std::string continueCaption;
    std::array<std::string, 3> choices;  ///< retry, next statement, leave
};

/// The texts as they stand on the dialog's controls.
inline FailureView ViewOf(const Form& dialog) {
    FailureView view;
    view.title = dialog.self.Caption();
    view.comment = dialog.At("lblComment").Caption();
    for (Integer i = 0; i < 4; ++i) {
        view.rows.push_back({dialog.At("lblErrTitel", i).Caption(), dialog.At("lblError", i).Caption()});
        view.protocol.at(static_cast<std::size_t>(i)) = dialog.At("cmdProtocol", i).Caption();
    }
    view.programInfoCaption = dialog.At("framProgInfo").Caption();
    view.programInfo = dialog.At("lblProgInfo").Caption();
    view.protocolCaption = dialog.At("framProtocol").Caption();
    view.callStackCaption = dialog.At("framCallStack").Caption();
    view.callStack = dialog.At("lstCallStack").list;
    view.continueCaption = dialog.At("framContinue").Caption();
    for (Integer i = 0; i < 3; ++i)
        view.choices.at(static_cast<std::size_t>(i)) = dialog.At("cmdContinue", i).Caption();
    return view;
}

}  // namespace orvo
