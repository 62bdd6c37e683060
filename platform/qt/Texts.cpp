#include "platform/qt/Texts.h"

namespace orvo::qt {

const Texts& TextsOf(Integer language) {
    static constexpr Texts kGerman{
        "OK", "&Ja", "&Nein", "Laufzeitfehler '%1':\n\n%2",
        "Kein Programm öffnet diese Adresse:\n\n%1\n\nDas Fehlerprotokoll liegt in der Zwischenablage."};
    static constexpr Texts kEnglish{
        "OK", "&Yes", "&No", "Run-time error '%1':\n\n%2",
        "No program opens this address:\n\n%1\n\nThe error report is on the clipboard."};
    static constexpr Texts kFrench{
        "OK", "&Oui", "&Non", "Erreur d'exécution '%1' :\n\n%2",
        "Aucun programme n'ouvre cette adresse :\n\n%1\n\nLe rapport d'erreur est dans le presse-papier."};
    if (language == 0) return kGerman;
    return language == 20000 ? kFrench : kEnglish;
}

QString FromUtf8(const std::string& text) {
    return QString::fromStdString(text).replace("\r\n", "\n");
}

}  // namespace orvo::qt
