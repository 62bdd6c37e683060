#include "tilevector/clsVectorTile.h"

#include "errorreport/Procedure.h"

namespace orvo {
namespace {

constexpr ProcedureText kExtentSet{
    "[clsVectorTile] Public Property Set Extent(objNewValue As esriGeometry.IEnvelope)", "clsVectorTile",
    "Extent [SET]"};
constexpr ProcedureText kExtentGet{"[clsVectorTile] Public Property Get Extent() As esriGeometry.IEnvelope",
                                   "clsVectorTile", "Extent [GET]"};
constexpr ProcedureText kIdLet{"[clsVectorTile] Public Property Let ID(strNewValue As String)",
                               "clsVectorTile", "ID [LET]"};
constexpr ProcedureText kIdGet{"[clsVectorTile] Public Property Get ID() As String", "clsVectorTile",
                               "ID [GET]"};
constexpr ProcedureText kTerminate{"[clsVectorTile] Private Sub Class_Terminate()", "clsVectorTile",
                                   "Class_Terminate"};

}  // namespace

clsVectorTile::~clsVectorTile() {
    try {
        Procedure<void>(kTerminate).Run([&](Statements& run) { run([&] { extent_.reset(); }); });
    } catch (...) {
        // A destructor lets nothing out; the members release what they still hold.
    }
}

void clsVectorTile::Extent(const std::shared_ptr<IEnvelope>& objNewValue) {
    Procedure<void>(kExtentSet).Run([&](Statements& run) { run([&] { extent_ = objNewValue; }); });
}

std::shared_ptr<IEnvelope> clsVectorTile::Extent() {
    using Result = std::shared_ptr<IEnvelope>;
    return Procedure<Result>(kExtentGet).Run([&](Statements& run, Result& result) {
        run([&] { result = extent_; });
    });
}

void clsVectorTile::Id(const std::string& strNewValue) {
    Procedure<void>(kIdLet).Run([&](Statements& run) { run([&] { id_ = strNewValue; }); });
}

std::string clsVectorTile::Id() {
    return Procedure<std::string>(kIdGet).Run(
        [&](Statements& run, std::string& result) { run([&] { result = id_; }); });
}

}  // namespace orvo
