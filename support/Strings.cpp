#include "support/Strings.h"

#include <algorithm>

#include "platform/RuntimeError.h"
#include "support/Arithmetic.h"

namespace orvo {
namespace {
constexpr Integer kCompanyName = 1;  // one row for all languages
}

std::span<const StringRow>& AddedRows() {
    static std::span<const StringRow> rows;
    return rows;
}

Integer& LangOffset() {
    static Integer offset = 0;
    return offset;
}

std::string LoadResString(Integer id) {
    for (const auto rows : {AddedRows(), StringRows(), ContactRows()}) {
        const auto row = std::ranges::find(rows, id, &StringRow::id);
        if (row != rows.end()) return std::string(row->text);
    }
    throw RuntimeError(static_cast<Long>(Fault::ResourceNotFound),
                       "Resource with identifier '" + std::to_string(id) + "' not found");
}

std::string Text(Integer id) {
    return LoadResString(id == kCompanyName ? id : AddInteger(id, LangOffset()));
}

std::string GetResString(Integer& nRes) {
    std::string result;
    for (;;) {
        std::string piece = Text(nRes);
        const bool goesOn = piece.ends_with('_');
        if (goesOn) piece.pop_back();
        result += piece;
        nRes = AddInteger(nRes, 1);
        if (!goesOn) return result;
    }
}

}  // namespace orvo
