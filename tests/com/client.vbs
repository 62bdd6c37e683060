' client.vbs SOURCE FOLDER: a script that knows ProgIDs and member names only. It cuts SOURCE into FOLDER and names each
' tile with its edges; the last line holds the exact number of checks.
Option Explicit

Dim checks, failures
checks = 0
failures = 0

Sub Check(what, holds)
    checks = checks + 1
    If Not holds Then
        failures = failures + 1
        WScript.Echo "FAILED: " & what
    End If
End Sub

' A line from west to east; a point where both ends are one.
Class HorizontalLine
    Public GeometryType
    Public IsEmpty
    Public West
    Public East
    Public X
    Public Y
    Public Function Within(tile)
        Within = Crosses(tile) And West >= tile.XMin And East <= tile.XMax
    End Function
    Public Function Crosses(tile)
        Crosses = Y > tile.YMin And Y < tile.YMax And West < tile.XMax And East > tile.XMin
    End Function
    Public Function Overlaps(tile)
        Overlaps = False
    End Function
    Public Function Clone
        Set Clone = NewLine(West, East, Y)
    End Function
    Public Sub Clip(tile)
        If West < tile.XMin Then West = tile.XMin
        If East > tile.XMax Then East = tile.XMax
    End Sub
End Class

Function NewLine(west, east, y)
    Set NewLine = New HorizontalLine
    NewLine.GeometryType = 3
    NewLine.IsEmpty = False
    NewLine.West = west
    NewLine.East = east
    NewLine.Y = y
End Function

Function NewPoint(x, y)
    Set NewPoint = NewLine(x, x, y)
    NewPoint.GeometryType = 1
    NewPoint.X = x
End Function

Class StatusDisplay
    Public Log
    Public Steps
    Public Sub ShowProgress(text, maxValue, isStep)
        If isStep Then Steps = Steps + 1 Else Log = Log & text & "|" & maxValue & "|"
    End Sub
End Class

Function NewEnvelope(x1, y1, x2, y2)
    Set NewEnvelope = CreateObject("OrvoPlatform.Envelope")
    NewEnvelope.XMin = x1
    NewEnvelope.YMin = y1
    NewEnvelope.XMax = x2
    NewEnvelope.YMax = y2
End Function

' What a statement fails with.
Function ErrorOf(grid, image, what)
    Dim x
    On Error Resume Next
    Select Case what
        Case "read Id": x = grid.Id
        Case "write TileObjectDict": Set image.TileObjectDict = Nothing
        Case "too few": x = grid.GetTileID(1)
        Case "too many": x = grid.GetTileID(1, 1, 1)
        Case "text for number": grid.TileWidth = "wide"
        Case "too large": grid.TileCountX = 3000000000
        Case "outside": x = grid.GetTileID(9, 9)
    End Select
    ErrorOf = Err.Number
End Function

' --- the vector class ---

Dim grid, tile, other, line, where, i, column, row
Set grid = CreateObject("Orvo_Tile.clsTileVector")
grid.TileWidth = 250
Check "a width without an extent is nothing", grid.TileCountX = 1 And grid.TileCountY = 1
Set grid.LayerExtent = NewEnvelope(0, 0, 1000, 600)
Set grid.VectorLayer = Nothing
Set grid.StatusObject = New StatusDisplay
grid.TileWidth = 250
grid.TileHeight = 200
grid.Id = "layer7"
grid.InitializeTiles
Check "four columns, three rows", grid.TileCountX = 4 And grid.TileCountY = 3 And grid.TileCount = 12
For row = 1 To 3
    For column = 1 To 4
        Set tile = grid.GetTileExtent(column, row)
        tile.Height = tile.Depth
    Next
Next
row = 2
Check "tile (1, 2)", grid.GetTileID(1, row) = "grp4"
Check "a name with the grid's prefix", grid.GetTileTStream(2, 1) = "layer7grp1"
Set tile = grid.GetTileExtent(4, 3)
Check "a tile's envelope is the same object", tile Is grid.GetTileExtent(4, 3)
Check "its edges", tile.XMin = 750 And tile.XMax = 1000 And tile.YMin = 400 And tile.YMax = 600
Set other = grid.GetTileExtent(0, 0)
Check "the whole layer", other.Width = 1000 And other.Depth = 600

Set where = NewPoint(600, 300)
column = -1
row = -1
Check "the point's tile is found", grid.IsInside(column, row, where)
Check "and written back", column = 3 And row = 2 And VarType(column) = 3 And VarType(row) = 3
column = 2
Check "another tile does not hold it", Not grid.IsInside(column, row, where) And column = 2
column = -1
row = -1
Check "east of the grid there is none", Not grid.IsInside(column, row, NewPoint(5000, 300)) And column = 5 And row = 4
Check "numbers that are no variables", grid.IsInside(3, 2, where)

Set line = NewLine(510, 690, 300)
Set other = grid.Clip(3, 2, line)
Check "a line inside comes as a copy", Not (other Is line) And other.West = 510 And other.East = 690
Set line = NewLine(100, 600, 300)
Set other = grid.Clip(2, 2, line)
Check "a line across is cut", other.West = 250 And other.East = 500 And line.West = 100 And line.East = 600
Check "a line elsewhere gives nothing", grid.Clip(4, 3, line) Is Nothing
Check "a point gives nothing", grid.Clip(3, 2, where) Is Nothing

Set other = grid.Clone(NewEnvelope(0, 0, 500, 300))
Check "a clone over less", other.TileCountX = 2 And other.TileCountY = 2
Set other = grid.Clone
Check "a clone has the same tiles and no prefix", other.TileCount = 12 And other.GetTileTStream(1, 1) = "grp0"
other.TileCountX = 8
other.TileCountY = 2
Check "counts given", other.TileCountX = 8 And other.TileCountY = 2

' --- the image class: a job on a system without a map platform ---

Dim image, status, folder, files, tiles, keys, source, raster
Set files = CreateObject("Scripting.FileSystemObject")
source = files.GetAbsolutePathName(WScript.Arguments(0))
folder = files.GetAbsolutePathName(WScript.Arguments(1))
Set raster = CreateObject("OrvoPlatform.RasterLayer")
raster.Open source
Set image = CreateObject("Orvo_Tile.clsTileImage")
Set tiles = image.TileObjectDict
Check "the dictionary is the same on every call", tiles.Count = 0 And tiles Is image.TileObjectDict
Set status = New StatusDisplay
Set image.StatusObject = status
image.SavePath = folder
image.GraphicFormat = "png"
image.GraphicConvertProg = ""
image.GraphicQuality = 75
image.ImageLayer raster, files.GetAbsolutePathName("none.png")
image.TileWidth = 32
image.TileHeight = 32
Check "an image that is not there", image.Tile = False And status.Log = ""
image.ImageLayer raster
Check "the image is cut into nine tiles", image.Tile And tiles.Count = 9
Check "the run is shown", status.Log = "Tiling                       " & WScript.Arguments(0) & "|27||0|"
Check "step by step", status.Steps >= 18
keys = tiles.Keys
For i = 0 To 8
    Set tile = tiles.Item(keys(i))
    WScript.Echo "tile " & keys(i) & " " & tile.XMin & " " & tile.YMin & " " & tile.XMax & " " & tile.YMax
Next
Check "the first tile lies in the upper left", tiles.Item(keys(0)).XMin = 1000 And tiles.Item(keys(0)).YMax = 2000
Set image.ClipEnvelope = NewEnvelope(1000, 1990, 1085, 2010)
image.ImageLayer raster, source
Check "the upper row alone", image.Tile And tiles.Count = 12
Check "a folder is a workspace", image.GetWorkspace(folder).PathName = folder

' --- what fails, and with which number ---

Dim failing
failing = Array("read Id", 438, "write TileObjectDict", 438, "too few", 449, "too many", 450, "text for number", 13, _
    "too large", 6, "outside", 0)
For i = 0 To UBound(failing) Step 2
    Check failing(i), ErrorOf(grid, image, failing(i)) = failing(i + 1)
Next

Set image = Nothing
Check "the dictionary outlives its object", tiles.Count = 12 And tiles.Exists(keys(0))

WScript.Echo "checks " & checks & " failed " & failures
