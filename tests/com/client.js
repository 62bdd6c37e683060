// A script whose objects are plain object literals. Its last line says that it came to its end, and what failed.
var failures = 0;

function check(what, holds) {
    if (holds) return;
    failures++;
    WScript.Echo("FAILED: " + what);
}

function fails(call) {
    try {
        call();
    } catch (failure) {
        return true;
    }
    return false;
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
check("write only", fails(function () { return grid.TileWidth; }));
check("read only", fails(function () { grid.TileCount = 1; }));
check("no object", fails(function () { grid.LayerExtent = "extent"; }));


// A status display that fails does not stop the job.
var image = new ActiveXObject("Orvo_Tile.clsTileImage");
var log = [];
image.StatusObject = {
    ShowProgress: function (text, maxValue, step) {
        log.push(text + "|" + maxValue + "|" + step);
        if (step) throw new Error(1234, "the display is gone");
    }
};
image.SavePath = ".";
image.GraphicFormat = "png";
image.GraphicQuality = "75";
image.ClipEnvelope = null;
image.ImageLayer({
    FilePath: new ActiveXObject("Scripting.FileSystemObject").GetAbsolutePathName("source.bmp"),
    Raster: {Width: 6, Height: 4, MeanCellSize: {X: 1, Y: 1}, RasterDataset: {FormatName: "BMP"}},
    Extent: envelope(0, 0, 6, 4)
});
image.TileWidth = 4;
image.TileHeight = -1;
check("two tiles", image.Tile() === true && image.TileObjectDict.Count === 2);
check("announced, shown and ended", log[0] === "Tiling                       source.bmp|6|false" &&
    log[1] === "Tiling source.bmp|0|true" && log[log.length - 1] === "|0|false");
var right = image.TileObjectDict.Item(new VBArray(image.TileObjectDict.Keys()).toArray()[1]);
check("the right part", right.XMin === 4 && right.XMax === 6 && right.YMin === 0 && right.YMax === 4);
WScript.Echo("end failed " + failures);
