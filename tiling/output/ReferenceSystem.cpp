#include "tiling/output/ReferenceSystem.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_string.h>
#include <ogr_spatialref.h>

namespace orvo::tiling {
namespace {

constexpr const char* kUnknown =
    "ENGCRS[\"unknown\",EDATUM[\"unknown\"],CS[Cartesian,2],AXIS[\"(E)\",east],AXIS[\"(N)\",north],"
    "LENGTHUNIT[\"unknown\",1]]";

/// Whether a reader of the name gets the same system.
bool Names(const std::string& name, const OGRSpatialReference& system) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    OGRSpatialReference read;
    const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", nullptr};
    return !name.empty() && read.SetFromUserInput(name.c_str()) == OGRERR_NONE &&
           read.IsSame(&system, options) != 0;
}

std::string CodeName(const OGRSpatialReference& system) {
    const char* const authority = system.GetAuthorityName(nullptr);
    const char* const code = system.GetAuthorityCode(nullptr);
    if (authority == nullptr || code == nullptr) return "";
    return std::string("urn:ogc:def:crs:") + authority + "::" + code;
}

std::string Wkt(const OGRSpatialReference& system) {
    char* text = nullptr;
    const char* const options[] = {"FORMAT=WKT2_2019", "MULTILINE=NO", nullptr};
    std::string wkt;
    if (system.exportToWkt(&text, options) == OGRERR_NONE && text != nullptr) wkt = text;
    CPLFree(text);
    return wkt;
}

/// Which axis of the system is x and which y.
std::string AxisMapping(const std::string& system) {
    OGRSpatialReference read;
    read.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (read.importFromWkt(system.c_str()) != OGRERR_NONE) return "1,2";
    std::string text;
    for (const int axis : read.GetDataAxisToSRSAxisMapping()) {
        text += (text.empty() ? "" : ",") + std::to_string(axis);
    }
    return text;
}

}  // namespace

ReferenceSystem NameReferenceSystem(const OGRSpatialReference* system) {
    if (system == nullptr || system->IsEmpty()) {
        return {kUnknown, "the source names no coordinate system; the index says \"unknown\""};
    }
    const std::string code = CodeName(*system);
    if (Names(code, *system)) return {code, ""};
    const std::string wkt = Wkt(*system);
    if (Names(wkt, *system)) return {wkt, ""};
    return {wkt.empty() ? kUnknown : wkt,
            "the coordinate system of the source cannot be kept whole in the index; compare it before use"};
}

std::string SystemElement(const std::string& wkt, int indent) {
    if (wkt.empty()) return "";
    return std::string(static_cast<std::size_t>(indent), ' ') + "<SRS dataAxisToSRSAxisMapping=\"" +
           AxisMapping(wkt) + "\">" + Escaped(wkt) + "</SRS>\n";
}

std::string Escaped(const std::string& text) {
    char* const escaped = CPLEscapeString(text.c_str(), static_cast<int>(text.size()), CPLES_XML);
    std::string copy = escaped;
    CPLFree(escaped);
    return copy;
}

}  // namespace orvo::tiling
