// A host's automation objects as the component's interfaces, and the way back.
//
// Objects are reached by the names of the interfaces' members: IDispatchEx where the object has it (script
// classes answer nothing else), IDispatch otherwise. docs/windows.md lists the names.
//
// A wrapper holds a counted reference to its object. An empty pointer gives an empty reference. A failing
// call of an object fails with a RuntimeError that carries the object's own number and text; a member that
// the object lacks fails with number 438 and the member's name.
#pragma once

#include <memory>

#include "platform/Raster.h"
#include "platform/Scripting.h"
#include "platform/Utility.h"
#include "platform/Vector.h"
#include "platform/windows/system/Win32.h"

namespace orvo::windows {

std::shared_ptr<IEnvelope> EnvelopeOf(IDispatch* object);
std::shared_ptr<IRasterLayer> RasterLayerOf(IDispatch* object);
std::shared_ptr<ILayer> LayerOf(IDispatch* object);
/// The geometry also offers IPoint, IClone, IRelationalOperator and ITopologicalOperator.
std::shared_ptr<IGeometry> GeometryOf(IDispatch* object);
std::shared_ptr<IDictionary> DictionaryOf(IDispatch* object);
/// A workspace whose object knows OpenRasterDataset is an IRasterWorkspace as well.
std::shared_ptr<IWorkspace> WorkspaceOf(IDispatch* object);

/// Calls go through the interface `id` where the object has it: derived from IDispatch, with
/// ShowMessage(BSTR) in the fourth and ShowProgress(BSTR, long, VARIANT_BOOL) in the fifth place behind
/// IDispatch's own; by name where it has not.
std::shared_ptr<IStatusDisplay> StatusDisplayOf(IUnknown* object, const IID& id);

// The object behind a reference: the one that a wrapper was made from, the same on every call. The caller
// owns one reference to it. An empty reference gives a null pointer; a reference that no object stands behind
// fails with number 13. Every object that this platform makes has one.
IDispatch* DispatchOf(const IGeometry* geometry);
IDispatch* DispatchOf(const IDictionary* dictionary);
IDispatch* DispatchOf(const IWorkspace* workspace);
IDispatch* DispatchOf(const IRasterLayer* layer);
template <class Interface>
IDispatch* DispatchOf(const std::shared_ptr<Interface>& reference) {
    return DispatchOf(reference.get());
}

}  // namespace orvo::windows
