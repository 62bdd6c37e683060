#include "platform/qt/LabelRoom.h"

#include <algorithm>

namespace orvo::qt {
namespace {

constexpr Long kSideMargin = 90;
constexpr Long kBottomMargin = 30;
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
    Long right = (frame == nullptr ? form.scaleWidth : frame->box.width) - kSideMargin;
    Long bottom = (frame == nullptr ? form.scaleHeight : frame->box.height) - kBottomMargin;
    const auto neighbours = [&](const Control& other) {
        return &other != &label && other.container == label.container && other.visible;
    };
    for (const Control& other : form.controls) {
        const bool beside = other.box.top < Bottom(label.box) && label.box.top < Bottom(other.box);
        if (neighbours(other) && beside && other.box.left > label.box.left)
            right = std::min(right, other.box.left);
    }
    Box room = label.box;
    room.width = std::max(room.width, right - room.left);
    for (const Control& other : form.controls) {
        const bool below = other.box.left < Right(room) && room.left < Right(other.box);
        if (neighbours(other) && below && other.box.top > room.top) bottom = std::min(bottom, other.box.top);
    }
    room.height = std::max(room.height, bottom - room.top);
    return room;
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

}  // namespace orvo::qt
