// What both classes offer, in the order and of the kinds that compiled hosts rely on.
#pragma once

#include <sstream>
#include <string>
#include <vector>

/// A member and its kind: "call", "get", "put" or "putref".
struct Member {
    std::wstring kind;
    std::wstring name;
    bool operator==(const Member&) const = default;
};
using Members = std::vector<Member>;

inline Members Listed(const wchar_t* text) {
    Members members;
    std::wistringstream words(text);
    for (Member member; words >> member.kind >> member.name;) members.push_back(member);
    return members;
}

inline const Members kImageMembers = Listed(
    LR"(
    putref ClipEnvelope  get TileObjectDict  put GraphicFormat  put GraphicConvertProg  put GraphicQuality
    putref StatusObject  call ImageLayer  put SavePath  put TileWidth  put TileHeight  call Tile
    call GetWorkspace)");

inline const Members kGridMembers = Listed(
    LR"(
    call Clone  put Id  putref StatusObject  putref LayerExtent  putref VectorLayer
    put TileCountX  get TileCountX  put TileCountY  get TileCountY  put TileWidth  put TileHeight
    get TileCount  call InitializeTiles  call GetTileID  call GetTileExtent  call GetTileTStream
    call Clip  call IsInside)");
