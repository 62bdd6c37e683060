#include "support/GUIApi.h"

#include "errorreport/Procedure.h"

namespace orvo {
namespace {
constexpr ProcedureText kMin{"[GUIApi] Function Min(ParamArray x()) As Variant", "GUIApi", "Min"};
}  // namespace

Variant Min(const std::vector<Variant>& x) {
    return Procedure<Variant>(kMin).Run([&](Statements& run, Variant& result) {
        Long i = 0;
        run([&] { result = 1E+230; });
        run.For(
            i, 0, [&] { return static_cast<Long>(x.size()) - 1; },
            [&] {
                const auto argument = [&]() -> const Variant& { return x[static_cast<std::size_t>(i)]; };
                if (run.Test([&] { return IsLess(argument(), result); })) run([&] { result = argument(); });
            });
    });
}

}  // namespace orvo
