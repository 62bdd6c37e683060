// What the terminal itself says, in the language of the day.
#pragma once

namespace orvo::console {

struct Words {
    const char* prompt;
    const char* several;  ///< before the numbers of the buttons that share a letter
    const char* yesNo;    ///< the two answers
    const char* copied;   ///< both before the name of the log
    const char* notCopied;
    const char* opening;  ///< before the address
    const char* notOpened;
};

/// Those of the process's language offset; English for an unknown one.
const Words& CurrentWords();

}  // namespace orvo::console
