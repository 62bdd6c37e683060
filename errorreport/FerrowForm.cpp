#include "errorreport/FerrowForm.h"

namespace orvo {
namespace {

struct Design {
    const char* kind = "";
    const char* name = "";
    Integer index = -1;  ///< −1 for a control on its own
    const char* container = "";
    const char* caption = nullptr;  ///< null where the kind has none
    const char* tag = "";           ///< string id of the caption; empty where the design caption stays
    Box box;
};

// "8014" stands twice on purpose: the first row is titled as its frame.
constexpr Design kControls[] = {
    {"Frame", "framComment", -1, "", "Hinweise:", "8013", {0, 0, 7215, 975}},
    {"Label", "lblComment", -1, "framComment", "lblComment", "", {120, 240, 6855, 615}},
    {"Frame", "framFehler", -1, "", "Fehlerbeschreibung:", "8014", {0, 960, 7215, 1695}},
    {"Label", "Label1", -1, "framFehler", " ! ", "", {90, 240, 705, 900}},
    {"Label", "lblErrTitel", 0, "framFehler", "Fehler-Nr:", "8014", {960, 240, 1215, 495}},
    {"Label", "lblErrTitel", 1, "framFehler", "Modul:", "8016", {960, 960, 1215, 255}},
    {"Label", "lblErrTitel", 2, "framFehler", "Prozedur:", "8017", {960, 1200, 1215, 255}},
    {"Label", "lblErrTitel", 3, "framFehler", "Zeilen-Nr.:", "8018", {960, 1440, 1215, 255}},
    {"Label", "lblError", 0, "framFehler", "lblError(0)", "", {2160, 240, 4965, 675}},
    {"Label", "lblError", 1, "framFehler", "lblError(1)", "", {2160, 960, 660, 195}},
    {"Label", "lblError", 2, "framFehler", "lblError(2)", "", {2160, 1200, 660, 195}},
    {"Label", "lblError", 3, "framFehler", "lblError(3)", "", {2160, 1440, 660, 195}},
    {"Frame", "framProgInfo", -1, "", "Programm-Infos:", "8019", {0, 2640, 7215, 615}},
    {"Label", "lblProgInfo", -1, "framProgInfo", "", "", {30, 240, 7110, 195}},
    {"Frame", "framProtocol", -1, "", "Fehlerprotokoll ...", "8020", {0, 3240, 7215, 855}},
    {"CommandButton", "cmdProtocol", 0, "framProtocol", "&Drucken", "8021", {240, 240, 1335, 495}},
    {"CommandButton", "cmdProtocol", 1, "framProtocol", "&Speichern", "8022", {2040, 240, 1335, 495}},
    {"CommandButton", "cmdProtocol", 2, "framProtocol", "&EMail", "", {3840, 240, 1335, 495}},
    {"CommandButton", "cmdProtocol", 3, "framProtocol", "&WWW", "", {5640, 240, 1335, 495}},
    {"Frame", "framCallStack", -1, "", "CallStack:", "", {0, 4080, 7215, 975}},
    {"ListBox", "lstCallStack", -1, "framCallStack", nullptr, "", {120, 240, 6975, 675}},
    {"Frame", "framContinue", -1, "", "Weiterer Programmablauf...", "8023", {0, 5040, 7215, 855}},
    {"CommandButton", "cmdContinue", 0, "framContinue", "Befehl wieder&holen", "8024", {240, 240, 1575, 495}},
    {"CommandButton",
     "cmdContinue",
     1,
     "framContinue",
     "Fortsetzen mit &nächsten Befehl",
     "8025",
     {1960, 240, 1575, 495}},
    {"CommandButton",
     "cmdContinue",
     2,
     "framContinue",
     "&Prozedur verlassen",
     "8026",
     {3680, 240, 1575, 495}},
    {"CommandButton", "cmdContinue", 3, "framContinue", "Programm &beenden", "8027", {5400, 240, 1575, 495}},
};

constexpr Long kDesignWidth = 7425;
constexpr Long kDesignHeight = 6480;

Control Made(const Design& design) {
    Control::Properties properties{{"Tag", design.tag}, {"ToolTipText", ""}};
    if (design.caption != nullptr) properties["Caption"] = design.caption;
    Control control(design.kind, std::move(properties));
    control.name = design.name;
    control.index = design.index;
    control.container = design.container;
    control.box = design.box;
    return control;
}

}  // namespace

Form DesignFerrow() {
    Form form;
    form.self = {"Form", {{"Caption", "ACHTUNG ! Ein Fehler ist aufgetreten ..."}, {"Tag", "8012"}}};
    form.self.name = "Ferrow";
    form.self.visible = false;
    // What the system draws round the inner area is its own: the window is as large as its inside.
    form.self.box = {0, 0, kDesignWidth, kDesignHeight};
    form.scaleWidth = kDesignWidth;
    form.scaleHeight = kDesignHeight;
    for (const Design& design : kControls) form.controls.push_back(Made(design));
    form.At("Label1").font = {"Arial", 36, true};
    return form;
}

}  // namespace orvo
