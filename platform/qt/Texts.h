// The desktop's own few texts.
#pragma once

#include <QString>
#include <string>
#include <vector>

#include "platform/Types.h"

namespace orvo::qt {

struct Texts {
    const char* ok;
    const char* yes;
    const char* no;
    const char* failure;   ///< %1 number, %2 description
    const char* noOpener;  ///< %1 address
};

/// @param language 0 German, 10000 English, 20000 French; English for any other
const Texts& TextsOf(Integer language);

/// UTF-8 as the toolkit's text, with one character per line end.
QString FromUtf8(const std::string& text);

}  // namespace orvo::qt
