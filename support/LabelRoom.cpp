#include "support/LabelRoom.h"

#include <algorithm>
#include <vector>

namespace orvo {
namespace {

constexpr Long kSideMargin = 90;
constexpr Long kBottomMargin = 30;
constexpr Long kGap = 60;
constexpr Long kSameLine = 30;

Long Right(const Box& box) {
    return box.left + box.width;
}
Long Bottom(const Box& box) {
    return box.top + box.height;
}

/// A text that is translated is a title; any other label or list shows a value.
bool IsTitled(const Control& control) {
    return control.TypeName() != "ListBox" && (control.TypeName() != "Label" || !control.Get("Tag").empty());
}

const Control* FrameOf(const Control& control, const Form& form) {
    for (const Control& frame : form.controls)
        if (frame.name == control.container) return &frame;
    return nullptr;
}

}  // namespace

Box LabelRoom(const Control& label, const Form& form) {
    const Control* frame = FrameOf(label, form);
    const Long left = std::max(label.box.left, kSideMargin);
    Long right = std::max((frame == nullptr ? form.scaleWidth : frame->box.width) - kSideMargin, left);
    Long bottom = (frame == nullptr ? form.scaleHeight : frame->box.height) - kBottomMargin;
    std::vector<Box> others;
    for (const Control& other : form.controls)
        if (&other != &label && other.container == label.container && other.visible)
            others.push_back(other.box);
    for (const Box& other : others) {
        const bool beside = other.top < Bottom(label.box) && label.box.top < Bottom(other);
        if (beside && other.left > label.box.left) right = std::min(right, other.left - kGap);
    }
    for (const Box& other : others) {
        const bool below = other.left < right && left < Right(other);
        if (below && other.top > label.box.top) bottom = std::min(bottom, other.top);
    }
    return {left, label.box.top, right - left, std::max(bottom - label.box.top, Long{0})};
}

std::string SpokenName(const Control& control, const Form& form) {
    if (IsTitled(control)) return control.Caption();
    const Control* title = nullptr;
    for (const Control& other : form.controls) {
        const bool sameLine = std::abs(other.box.top - control.box.top) <= kSameLine;
        if (other.TypeName() != "Label" || other.container != control.container || !IsTitled(other)) continue;
        if (sameLine && other.box.left < control.box.left) title = &other;
    }
    if (title == nullptr) title = FrameOf(control, form);
    return title == nullptr ? form.self.Caption() : title->Caption();
}

}  // namespace orvo
