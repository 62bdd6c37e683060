#include "platform/console/Words.h"

#include "support/Strings.h"

namespace orvo::console {
namespace {

constexpr Integer kGermanOffset = 0;
constexpr Integer kFrenchOffset = 20000;

constexpr Words kGerman{
    "Nummer oder [Buchstabe]",
    "Mehrere Tasten haben diesen Buchstaben. Bitte die Nummer angeben: ",
    "[j/n]",
    "Der Bericht wurde der Zwischenablage des Terminals übergeben; nicht jedes Terminal nimmt ihn an. "
    "Er steht auch zuletzt in ",
    "Hier gibt es keine Zwischenablage. Der Bericht steht zuletzt in ",
    "Wird geöffnet: ",
    "Kein Programm öffnet sie. Bitte diese Adresse selbst öffnen: ",
    "Druckerfehler: ",
    " konnte nicht geschrieben werden; ist der Datenträger voll?",
    " wurde nicht fertig; läuft der Druckdienst?",
    " meldet: ",
    " (lpoptions -d NAME wählt den Standarddrucker; der Bericht kann statt dessen gespeichert werden)",
    "Es gibt weder lp noch lpr; bitte cups-client installieren oder den Bericht statt dessen speichern",
    "Es darf kein Druckbefehl gestartet werden",
};

constexpr Words kEnglish{
    "Number or [letter]",
    "Several buttons have this letter. Please give the number: ",
    "[y/n]",
    "The report was handed to the terminal's clipboard; not every terminal takes it. It also stands last in ",
    "There is no clipboard here. The report stands last in ",
    "Opening ",
    "No program opens it. Please open this address yourself: ",
    "Printer error: ",
    " could not be written; is the disk full?",
    " did not finish; is the print server running?",
    " says: ",
    " (lpoptions -d NAME chooses the default printer; the report can be saved instead)",
    "there is no lp or lpr; install cups-client, or save the report instead",
    "no printing command may be started",
};

constexpr Words kFrench{
    "Numéro ou [lettre]",
    "Plusieurs boutons ont cette lettre. Veuillez donner le numéro : ",
    "[o/n]",
    "Le rapport a été transmis au presse-papier du terminal ; tous les terminaux ne l'acceptent pas. "
    "Il se trouve aussi à la fin de ",
    "Il n'y a pas de presse-papier ici. Le rapport se trouve à la fin de ",
    "Ouverture de ",
    "Aucun programme ne l'ouvre. Veuillez ouvrir cette adresse vous-même : ",
    "Erreur d'impression : ",
    " n'a pas pu être écrit ; le disque est-il plein ?",
    " ne s'est pas terminé ; le serveur d'impression fonctionne-t-il ?",
    " répond : ",
    " (lpoptions -d NOM choisit l'imprimante par défaut ; le rapport peut aussi être enregistré)",
    "il n'y a ni lp ni lpr ; veuillez installer cups-client, ou enregistrer le rapport",
    "aucune commande d'impression ne peut être lancée",
};

}  // namespace

const Words& CurrentWords() {
    switch (LangOffset()) {
        case kGermanOffset:
            return kGerman;
        case kFrenchOffset:
            return kFrench;
        default:
            return kEnglish;
    }
}

}  // namespace orvo::console
