// A script whose objects are plain object literals. Its last line says that it came to its end, and what failed.
var failures = 0;

function check(what, holds) {
    if (holds) return;
    failures++;
    WScript.Echo("FAILED: " + what);
}

function envelope(xMin, yMin, xMax, yMax) {
    return {XMin: xMin, YMin: yMin, XMax: xMax, YMax: yMax, Width: xMax - xMin, Height: yMax - yMin, Depth: 0, IsEmpty: false};
}

var grid = new ActiveXObject("Orvo_Tile.clsTileVector");
grid.LayerExtent = envelope(0, 0, 1000, 600);
grid.StatusObject = null;
grid.VectorLayer = {AreaOfInterest: envelope(0, 0, 500, 600)};
grid.TileWidth = 250;
grid.TileHeight = -1;
check("a layer's extent", grid.TileCountX === 2);
grid.InitializeTiles();
grid.Id = "g\u00e4\u00df";
check("texts of any language", grid.GetTileTStream(2, 1) === "g\u00e4\u00dfgrp1");
check("a prefix of its own", grid.GetTileTStream(2, 1, "\u4e16") === "\u4e16grp1");
grid.GetTileExtent(2, 1).Height = 600;
check("properties of a tile are put", grid.GetTileExtent(2, 1).YMax === 600);
var point = {GeometryType: 1, X: 300, Y: 300, Within: function (tile) { return tile.XMin < 300 && 300 < tile.XMax; }};
check("the point lies in the second tile", grid.IsInside(2, 1, point) === true && grid.IsInside(1, 1, point) === false);
check("nothing is null", grid.Clip(2, 1, point) === null);
check("a failing member gives its empty result", grid.GetTileID(9, 9) === "");

var tiles = new ActiveXObject("Orvo_Tile.clsTileImage").TileObjectDict;
tiles.Add("t\u00e4", grid.GetTileExtent(2, 1));
check("the dictionary's keys", new VBArray(tiles.Keys()).toArray()[0] === "t\u00e4" && tiles.Item("t\u00e4").YMax === 600);
WScript.Echo("end failed " + failures);
