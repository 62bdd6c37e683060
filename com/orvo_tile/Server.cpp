// What Orvo_Tile.dll offers.
#include "com/kit/Server.h"

#include "com/orvo_tile/DualInterface.h"
#include "com/orvo_tile/TileImage.h"
#include "com/orvo_tile/TileVector.h"
#include "platform/windows/Platform.h"

namespace orvo::com {
namespace {

/// The first object of a process brings the platform.
template <class Object, class Interface>
IUnknown* Create() {
    static const bool installed = (platform::Install(windows::MakePlatform()), true);
    static_cast<void>(installed);
    return static_cast<Interface*>(new Object);
}

}  // namespace

const Server& ThisServer() {
    static const Server server{
        {{__uuidof(::clsTileImage), L"Orvo_Tile.clsTileImage", L"Cuts a raster layer into image tiles",
          &Create<TileImage, _clsTileImage>},
         {__uuidof(::clsTileVector), L"Orvo_Tile.clsTileVector", L"Lays a grid of tiles over a vector layer",
          &Create<TileVector, _clsTileVector>}},
        TypeLibrary{LIBID_Orvo_Tile,
                    L"1.0",
                    L"Orvo_Tile: raster and vector tiles",
                    {{__uuidof(::IStatusDisplay), L"IStatusDisplay"},
                     {__uuidof(_clsTileImage), L"_clsTileImage"},
                     {__uuidof(_clsTileVector), L"_clsTileVector"}}},
        &ForgetDualInterfaces};
    return server;
}

}  // namespace orvo::com
