#include "support/Form.h"

#include <cstdlib>
#include <functional>
#include <limits>
#include <string_view>

#include "support/Arithmetic.h"
#include "support/Strings.h"
#include "support/Text.h"

namespace orvo {
namespace {

using Lookup = std::string (*)(Integer id);

std::string Continued(Integer id) {
    return GetResString(id);
}

/// A property's text as a string id, rounded to a 16-bit whole number.
Integer StringId(const std::string& text) {
    const Long id = ToLong(std::strtod(text.c_str(), nullptr));
    if (id < std::numeric_limits<Integer>::min() || id > std::numeric_limits<Integer>::max()) {
        throw RuntimeError(Fault::Overflow);
    }
    return static_cast<Integer>(id);
}

/// One rule: where `source` reads as a number, `target` gets the text of that id; on failure nothing changes.
void Localize(Control& control, const char* source, const char* target, Lookup lookup) {
    try {
        const std::string& id = control.Get(source);
        if (IsNumeric(id)) control.Set(target, lookup(StringId(id)));
    } catch (...) {
        // Skipped on purpose: one missing text must not cost the others theirs.
    }
}

void LocalizeControl(Control& control) {
    const std::string& kind = control.TypeName();
    if (kind == "Menu") {
        Localize(control, "Caption", "Caption", Text);
    } else if (kind == "TabStrip") {
        for (Control& tab : control.Items()) {
            Localize(tab, "Tag", "Caption", Text);
            Localize(tab, "ToolTipText", "ToolTipText", Text);
        }
    } else if (kind == "Toolbar") {
        for (Control& button : control.Items()) Localize(button, "Tag", "ToolTipText", Text);
    } else if (kind == "ListView") {
        for (Control& header : control.Items()) Localize(header, "Tag", "Text", Text);
    } else {
        Localize(control, "Tag", "Caption", Continued);
        Localize(control, "ToolTipText", "ToolTipText", Text);
    }
}

}  // namespace

void LoadResStrings(Form& frm) {
    Localize(frm.self, "Tag", "Caption", Text);
    for (Control& control : frm.controls) LocalizeControl(control);
}

}  // namespace orvo
