// A dialog as data: controls with the properties that localization reads and writes.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace orvo {

/// A control, an item of one (a tab, a button, a column header), or the dialog itself.
class Control {
  public:
    using Properties = std::map<std::string, std::string>;

    Control() = default;
    /// @param typeName kind of control, such as "Label", "Menu" or "TabStrip"
    /// @param properties the properties that this kind has; every other one is missing
    Control(std::string typeName, Properties properties)
        : typeName_(std::move(typeName)), properties_(std::move(properties)) {}

    const std::string& TypeName() const { return typeName_; }
    /// A property that the control lacks fails with number 438, for reading and for writing.
    const std::string& Get(const std::string& property) const;
    void Set(const std::string& property, std::string text);

    /// Tabs, Buttons or ColumnHeaders of controls that hold items.
    std::vector<Control>& Items() { return items_; }

  private:
    std::string typeName_;
    Properties properties_;
    std::vector<Control> items_;
};

/// A dialog: its own properties and its controls in order.
struct Form {
    Control self;
    std::vector<Control> controls;
};

/// Puts localized texts on a dialog and its controls, from the string ids in their properties. Whatever fails
/// is skipped: a missing property, a missing text, an id that is no number.
void LoadResStrings(Form& frm);

}  // namespace orvo
