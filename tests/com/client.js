// A script whose objects are plain object literals. Its last line holds the exact number of checks.
var checks = 0;
var failures = 0;

function check(what, holds) {
    checks++;
    if (holds) return;
    failures++;
    WScript.Echo("FAILED: " + what);
}

/// The number of what a call fails with, 0 where it does not.
function errorOf(call) {
    try {
        call();
    } catch (failure) {
        return failure.number & 0xFFFF;
    }
    return 0;
}

function envelope(xMin, yMin, xMax, yMax) {
    return {
        XMin: xMin, YMin: yMin, XMax: xMax, YMax: yMax, Width: xMax - xMin, Height: yMax - yMin, Depth: 0,
        IsEmpty: xMax <= xMin || yMax <= yMin,
        Clone: function () { return envelope(this.XMin, this.YMin, this.XMax, this.YMax); },
        Intersect: function (other) {
            this.XMin = Math.max(this.XMin, other.XMin);
            this.YMin = Math.max(this.YMin, other.YMin);
            this.XMax = Math.min(this.XMax, other.XMax);
            this.YMax = Math.min(this.YMax, other.YMax);
            this.Width = this.XMax - this.XMin;
            this.Height = this.YMax - this.YMin;
            this.IsEmpty = this.Width <= 0 || this.Height <= 0;
        }
    };
}

function rasterLayer(path, columns, rows) {
    return {
        FilePath: path,
        Raster: {
            Width: columns, Height: rows, MeanCellSize: {X: 1, Y: 1}, RasterDataset: {FormatName: "BMP"}
        },
        Extent: envelope(0, 0, columns, rows)
    };
}

/// Points that keep what lies in a tile.
function multipoint(points) {
    function inside(point, tile) {
        return point[0] > tile.XMin && point[0] < tile.XMax && point[1] > tile.YMin && point[1] < tile.YMax;
    }
    return {
        GeometryType: 2,
        IsEmpty: points.length === 0,
        Count: points.length,
        Clone: function () { return multipoint(points.slice(0)); },
        Within: function (tile) {
            for (var i = 0; i < points.length; i++)
                if (!inside(points[i], tile)) return false;
            return true;
        },
        Clip: function (tile) {
            var kept = [];
            for (var i = 0; i < points.length; i++)
                if (inside(points[i], tile)) kept.push(points[i]);
            points = kept;
            this.Count = kept.length;
            this.IsEmpty = kept.length === 0;
        }
    };
}

function testGrid() {
    var grid = new ActiveXObject("Orvo_Tile.clsTileVector");
    check("one tile", grid.TileCountX === 1 && grid.TileCountY === 1);
    grid.LayerExtent = envelope(0, 0, 1000, 600);
    grid.TileWidth = 250;
    grid.TileHeight = -1;
    grid.StatusObject = null;
    check("four tiles", grid.TileCount === 4 && grid.TileCountX === 4 && grid.TileCountY === 1);
    grid.InitializeTiles();
    grid.Id = "g\u00e4\u00df";
    check("texts of any language", grid.GetTileTStream(4, 1) === "g\u00e4\u00dfgrp3");
    check("a prefix of its own", grid.GetTileTStream(4, 1, "\u4e16") === "\u4e16grp3");
    check("tile (2, 1)", grid.GetTileID(2, 1) === "grp1");
    for (var x = 1; x <= 4; x++) grid.GetTileExtent(x, 1).Height = 600;
    check("heights stay set", grid.GetTileExtent(3, 1).YMax === 600);

    var points = multipoint([[300, 100], [400, 100], [700, 100]]);
    var part = grid.Clip(2, 1, points);
    check("two points of three", part.Count === 2 && points.Count === 3);
    check("no point", grid.Clip(4, 1, points) === null);
    var point = {GeometryType: 1, X: 600, Y: 300,
                 Within: function (tile) { return tile.XMin < 600 && 600 < tile.XMax; }};
    var column = -1;
    check("the point lies in a tile", grid.IsInside(column, -1, point) === true);
    check("in the third", grid.IsInside(3, 1, point) === true && grid.IsInside(2, 1, point) === false);
    check("only points lie in tiles", grid.IsInside(2, 1, points) === false);
    check("a clone over the same extent", grid.Clone().TileCountX === 4);
    check("a clone over another", grid.Clone(envelope(0, 0, 300, 600)).TileCountX === 2);
    grid.VectorLayer = {AreaOfInterest: envelope(0, 0, 500, 600)};
    check("a layer's extent", grid.TileCount === 2);
    grid.TileCountX = 2;
    grid.TileCountY = 2;
    check("counts given", grid.TileCountX === 2 && grid.TileCountY === 2);

    check("a failure is the procedure's own affair", errorOf(function () { grid.GetTileID(9, 9); }) === 0);
    check("whose result is empty", grid.GetTileID(9, 9) === "");
    check("write only", errorOf(function () { return grid.TileWidth; }) !== 0);
    check("read only", errorOf(function () { grid.TileCount = 1; }) !== 0);
    check("no such member", errorOf(function () { grid.Missing(); }) !== 0);
    check("no object", errorOf(function () { grid.LayerExtent = "extent"; }) !== 0);
}

function testImage() {
    var files = new ActiveXObject("Scripting.FileSystemObject");
    var folder = files.GetAbsolutePathName("jscript");
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
    var image = new ActiveXObject("Orvo_Tile.clsTileImage");
    var log = [];
    image.StatusObject = {
        ShowMessage: function (text) { log.push("message"); },
        ShowProgress: function (text, maxValue, step) { log.push(text + "|" + maxValue + "|" + step); }
    };
    image.SavePath = folder;
    image.GraphicFormat = "png";
    image.GraphicConvertProg = "";
    image.GraphicQuality = "75";
    image.ClipEnvelope = null;
    image.ImageLayer(rasterLayer(files.GetAbsolutePathName("source.bmp"), 6, 4));
    image.TileWidth = 4;
    image.TileHeight = -1;
    check("the image is cut", image.Tile() === true);
    check("two tiles", image.TileObjectDict.Count === 2);
    check("the start", log[0] === "Tiling                       source.bmp|6|false");
    check("a cell", log[1] === "Tiling source.bmp|0|true");
    check("the end", log[log.length - 1] === "|0|false");
    var names = new VBArray(image.TileObjectDict.Keys()).toArray();
    var right = image.TileObjectDict.Item(names[1]);
    check("the right part", right.XMin === 4 && right.XMax === 6 && right.YMin === 0 && right.YMax === 4);
    check("its file", files.FileExists(folder + "\\" + names[1]));
    image.ClipEnvelope = envelope(0, 0, 2, 4);
    check("a clip area", image.Tile() === true && image.TileObjectDict.Count === 3);
    check("a workspace", image.GetWorkspace(folder).PathName === folder);
    check("write only", errorOf(function () { return image.SavePath; }) !== 0);
    check("read only", errorOf(function () { image.TileObjectDict = null; }) !== 0);

    var rows = 0;
    image.StatusObject = {ShowProgress: function () { rows++; throw new Error(1234, "the display is gone"); }};
    check("a display that fails does not stop the run", image.Tile() === true && rows > 4);
}

testGrid();
testImage();
WScript.Echo("checks " + checks + " failed " + failures);
