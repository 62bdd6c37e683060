// A script whose objects are plain object literals. Its last line says that it came to its end, and what failed.
function envelope(xMin, yMin, xMax, yMax) {
    return {XMin: xMin, YMin: yMin, XMax: xMax, YMax: yMax, Width: xMax - xMin, Height: yMax - yMin, Depth: 0, IsEmpty: false};
}

var grid = new ActiveXObject("Orvo_Tile.clsTileVector");
var tiles = new ActiveXObject("Orvo_Tile.clsTileImage").TileObjectDict;
var point = {GeometryType: 1, X: 300, Y: 300, Within: function (tile) { return tile.XMin < 300 && 300 < tile.XMax; }};
grid.LayerExtent = envelope(0, 0, 1000, 600);
grid.StatusObject = null;
grid.VectorLayer = {AreaOfInterest: envelope(0, 0, 500, 600)};
grid.TileWidth = 250;
grid.TileHeight = -1;
grid.InitializeTiles();
grid.Id = "g\u00e4\u00df";
grid.GetTileExtent(2, 1).Height = 600;
tiles.Add("t\u00e4", grid.GetTileExtent(2, 1));
var told = [grid.TileCountX, grid.GetTileTStream(2, 1), grid.GetTileTStream(2, 1, "\u4e16"), grid.GetTileExtent(2, 1).YMax,
            grid.IsInside(2, 1, point), grid.IsInside(1, 1, point), grid.Clip(2, 1, point) === null, grid.GetTileID(9, 9),
            new VBArray(tiles.Keys()).toArray()[0], tiles.Item("t\u00e4").YMax].join();
var failed = told === "2,g\u00e4\u00dfgrp1,\u4e16grp1,600,true,false,true,,t\u00e4,600" ? 0 : told;
WScript.Echo("end failed " + failed);
