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
    const char* printerError;   ///< before why the printer fails, that is one of those below
    const char* notWritten;     ///< behind the name of a file
    const char* printerStops;   ///< behind the name of the command
    const char* printerSays;    ///< between the name of the command and its words
    const char* printerAdvice;  ///< behind these
    const char* noPrinter;
    const char* noCommands;
};

/// Those of the process's language offset; English for an unknown one.
const Words& CurrentWords();

}  // namespace orvo::console
