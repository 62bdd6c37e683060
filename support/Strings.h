// The component's texts in German, English and French, and how they are looked up.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/Types.h"

namespace orvo {

/// One row of the string table. The language is part of the id: German as it is, English + 10000, French +
/// 20000.
struct StringRow {
    Integer id;
    std::string_view text;  ///< UTF-8
};

/// All rows but the contact rows.
std::span<const StringRow> StringRows();
/// The supplier's own data: installation data, see ContactRows.cpp.
std::span<const StringRow> ContactRows();

/// Rows that a deployment or a host adds at run time; they go before all others. The caller keeps them alive.
std::span<const StringRow>& AddedRows();

/// The process-wide language offset: 0 German, 10000 English, 20000 French. The object created last sets it.
Integer& LangOffset();

/// The text of exactly this id; a missing row fails with number 326.
std::string LoadResString(Integer id);

/// The text of id + LangOffset; a sum above 32767 fails with "Overflow". Id 1, the supplier's name, is looked
/// up without the offset.
std::string Text(Integer id);

/// As Text, but a text that ends in "_" continues in the next id; `nRes` ends one past the last id read.
std::string GetResString(Integer& nRes);

}  // namespace orvo
