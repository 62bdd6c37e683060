// A script whose objects are plain object literals. Its last line holds the exact number of checks.
var checks = 0;
var failures = 0;

function check(what, holds) {
    checks++;
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
    return {
        XMin: xMin, YMin: yMin, XMax: xMax, YMax: yMax, Width: xMax - xMin, Height: yMax - yMin, Depth: 0,
        IsEmpty: xMax <= xMin || yMax <= yMin,
        Clone: function () { return envelope(this.XMin, this.YMin, this.XMax, this.YMax); },
        Intersect: function (other) {
            this.XMin = Math.max(this.XMin, other.XMin);
            this.XMax = Math.min(this.XMax, other.XMax);
            this.Width = this.XMax - this.XMin;
            this.IsEmpty = this.Width <= 0;
        }
    };
}

function testGrid() {
    var grid = new ActiveXObject("Orvo_Tile.clsTileVector");
    grid.LayerExtent = envelope(0, 0, 1000, 600);
    grid.StatusObject = null;
    grid.TileWidth = 250;
    grid.TileHeight = -1;
    grid.InitializeTiles();
    check("four tiles", grid.TileCount === 4 && grid.TileCountX === 4 && grid.TileCountY === 1);
    grid.Id = "g\u00e4\u00df";
    check("texts of any language", grid.GetTileTStream(4, 1) === "g\u00e4\u00dfgrp3");
    check("a prefix of its own", grid.GetTileTStream(4, 1, "\u4e16") === "\u4e16grp3");
    for (var x = 1; x <= 4; x++) grid.GetTileExtent(x, 1).Height = 600;
    check("heights stay set", grid.GetTileExtent(3, 1).YMax === 600);

    var point = {
        GeometryType: 1, X: 600, Y: 300,
        Within: function (tile) { return tile.XMin < 600 && 600 < tile.XMax; }
    };
    check("the point lies in a tile", grid.IsInside(-1, -1, point) === true);
    check("in the third", grid.IsInside(3, 1, point) === true && grid.IsInside(2, 1, point) === false);
    check("a point is not clipped", grid.Clip(3, 1, point) === null);
    check("a clone over another extent", grid.Clone(envelope(0, 0, 300, 600)).TileCountX === 2);
    grid.VectorLayer = {AreaOfInterest: envelope(0, 0, 500, 600)};
    check("a layer's extent", grid.Clone().TileCountX === 2);

    check("a failing member gives its empty result", grid.GetTileID(9, 9) === "");
    check("write only", fails(function () { return grid.TileWidth; }));
    check("read only", fails(function () { grid.TileCount = 1; }));
    check("no object", fails(function () { grid.LayerExtent = "extent"; }));
}

function testImage() {
    var files = new ActiveXObject("Scripting.FileSystemObject");
    var folder = files.GetAbsolutePathName(".");
    var image = new ActiveXObject("Orvo_Tile.clsTileImage");
    var log = [];
    image.StatusObject = {
        ShowProgress: function (text, maxValue, step) { log.push(text + "|" + maxValue + "|" + step); }
    };
    image.SavePath = folder;
    image.GraphicFormat = "png";
    image.GraphicConvertProg = "";
    image.GraphicQuality = "75";
    image.ClipEnvelope = null;
    image.ImageLayer({
        FilePath: files.GetAbsolutePathName("source.bmp"),
        Raster: {Width: 6, Height: 4, MeanCellSize: {X: 1, Y: 1}, RasterDataset: {FormatName: "BMP"}},
        Extent: envelope(0, 0, 6, 4)
    });
    image.TileWidth = 4;
    image.TileHeight = -1;
    check("two tiles are cut", image.Tile() === true && image.TileObjectDict.Count === 2);
    check("it is announced", log[0] === "Tiling                       source.bmp|6|false");
    check("step by step", log[1] === "Tiling source.bmp|0|true");
    check("to its end", log[log.length - 1] === "|0|false");
    var name = new VBArray(image.TileObjectDict.Keys()).toArray()[1];
    var right = image.TileObjectDict.Item(name);
    check("the right part", right.XMin === 4 && right.XMax === 6 && right.YMin === 0 && right.YMax === 4);
    check("its file", files.FileExists(folder + "\\" + name));
    image.ClipEnvelope = envelope(0, 0, 2, 4);
    check("a clip area", image.Tile() === true && image.TileObjectDict.Count === 3);
    check("a workspace", image.GetWorkspace(folder).PathName === folder);

    var rows = 0;
    image.StatusObject = {ShowProgress: function () { rows++; throw new Error(1234, "the display is gone"); }};
    check("a display that fails does not stop the run", image.Tile() === true && rows > 4);
}

testGrid();
testImage();
WScript.Echo("checks " + checks + " failed " + failures);
