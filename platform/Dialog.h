// A dialog as data: its controls, where they lie and what they say. Windows are drawn from it.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/RuntimeError.h"
#include "platform/Types.h"

namespace orvo {

/// A rectangle in twips, 1/1440 inch.
struct Box {
    Long left = 0;
    Long top = 0;
    Long width = 0;
    Long height = 0;
    bool operator==(const Box&) const = default;
};

struct Font {
    std::string family = "MS Sans Serif";
    double points = 8.25;
    bool bold = false;
};

/// A control, an item of one (a tab, a button, a column header), or the dialog itself.
class Control {
  public:
    using Properties = std::map<std::string, std::string>;

    Control() = default;
    /// @param typeName kind of control, such as "Frame", "Label", "CommandButton" or "ListBox"
    /// @param properties the text properties that this kind has; every other one is missing
    Control(std::string typeName, Properties properties)
        : typeName_(std::move(typeName)), properties_(std::move(properties)) {}

    const std::string& TypeName() const { return typeName_; }
    /// A property that the control lacks fails with number 438, for reading and for writing.
    const std::string& Get(const std::string& property) const {
        const auto at = properties_.find(property);
        if (at == properties_.end()) throw RuntimeError(Fault::PropertyNotSupported);
        return at->second;
    }
    void Set(const std::string& property, std::string text) {
        const auto at = properties_.find(property);
        if (at == properties_.end()) throw RuntimeError(Fault::PropertyNotSupported);
        at->second = std::move(text);
    }
    /// The caption as it stands. An ampersand marks the character behind it as access key.
    const std::string& Caption() const { return Get("Caption"); }

    /// Tabs, Buttons or ColumnHeaders of controls that hold items.
    std::vector<Control>& Items() { return items_; }

    std::string name;       ///< of the control, or of the array that it belongs to
    Integer index = -1;     ///< in its array; −1 for a control on its own
    std::string container;  ///< name of the frame that holds it; empty for the dialog itself
    Box box;  ///< relative to the upper left corner of its container; the dialog's: on the screen
    Font font;
    bool visible = true;
    std::vector<std::string> list;  ///< entries of a "ListBox", first on top

  private:
    std::string typeName_;
    Properties properties_;
    std::vector<Control> items_;
};

/// A dialog: its own properties and its controls in order.
struct Form {
    Control self;          ///< its box is that of the whole window
    Long scaleWidth = 0;   ///< width of the inner area in twips
    Long scaleHeight = 0;  ///< height of the inner area in twips
    std::vector<Control> controls;

  private:
    template <class Controls>
    static auto& Find(Controls& controls, const std::string& name, Integer index) {
        for (auto& control : controls)
            if (control.name == name && control.index == index) return control;
        throw RuntimeError(Fault::PropertyNotSupported, name);
    }

  public:
    /// The control of that name and index; a missing one fails with number 438.
    Control& At(const std::string& name, Integer index = -1) { return Find(controls, name, index); }
    const Control& At(const std::string& name, Integer index = -1) const {
        return Find(controls, name, index);
    }
};

}  // namespace orvo
