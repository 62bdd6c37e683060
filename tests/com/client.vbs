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

Class VectorLayer
    Public AreaOfInterest
End Class

Class Point
    Public X
    Public Y
    Public Property Get GeometryType
        GeometryType = 1
    End Property
    Public Property Get IsEmpty
        IsEmpty = False
    End Property
    Public Function Within(tile)
        Within = X > tile.XMin And X < tile.XMax And Y > tile.YMin And Y < tile.YMax
    End Function
End Class

' A line from west to east.
Class HorizontalLine
    Public West
    Public East
    Public Y
    Public Property Get GeometryType
        GeometryType = 3
    End Property
    Public Property Get IsEmpty
        IsEmpty = East <= West
    End Property
    Public Function Within(tile)
        Within = Y > tile.YMin And Y < tile.YMax And West >= tile.XMin And East <= tile.XMax
    End Function
    Public Function Crosses(tile)
        Crosses = Y > tile.YMin And Y < tile.YMax And West < tile.XMax And East > tile.XMin
    End Function
    Public Function Overlaps(tile)
        Overlaps = False
    End Function
    Public Function Clone
        Dim copy
        Set copy = New HorizontalLine
        copy.West = West
        copy.East = East
        copy.Y = Y
        Set Clone = copy
    End Function
    Public Sub Clip(tile)
        If West < tile.XMin Then West = tile.XMin
        If East > tile.XMax Then East = tile.XMax
    End Sub
End Class

Class StatusDisplay
    Public Starts
    Public Announced
    Public Steps
    Public Ends
    Public Title
    Public Sub ShowMessage(text)
    End Sub
    Public Sub ShowProgress(text, maxValue, isStep)
        If isStep Then
            Steps = Steps + 1
        ElseIf maxValue > 0 Then
            Starts = Starts + 1
            Announced = maxValue
            Title = text
        ElseIf text = "" Then
            Ends = Ends + 1
        End If
    End Sub
End Class

Function NewEnvelope(x1, y1, x2, y2)
    Dim made
    Set made = CreateObject("OrvoPlatform.Envelope")
    made.XMin = x1
    made.YMin = y1
    made.XMax = x2
    made.YMax = y2
    Set NewEnvelope = made
End Function

' What a statement fails with.
Function ErrorOf(grid, image, what)
    Dim x
    On Error Resume Next
    Err.Clear
    Select Case what
        Case "read Id": x = grid.Id
        Case "read LayerExtent": Set x = grid.LayerExtent
        Case "read TileWidth": x = grid.TileWidth
        Case "read SavePath": x = image.SavePath
        Case "read GraphicQuality": x = image.GraphicQuality
        Case "write TileCount": grid.TileCount = 1
        Case "write TileObjectDict": Set image.TileObjectDict = Nothing
        Case "missing member": grid.Extent = 1
        Case "too few": x = grid.GetTileID(1)
        Case "too many": x = grid.GetTileID(1, 1, 1)
        Case "no object": Set grid.LayerExtent = grid.GetTileID(1, 1)
        Case "text for number": grid.TileWidth = "wide"
        Case "too large": grid.TileCountX = 3000000000
        Case "unset": grid.InitializeTiles
    End Select
    ErrorOf = Err.Number
    On Error Goto 0
End Function

' --- the vector class ---

Dim grid, tile, other, i, y, line, found, where, column, row, id
Set grid = CreateObject("Orvo_Tile.clsTileVector")
Check "a new grid has one column", grid.TileCountX = 1
Check "a new grid has one row", grid.TileCountY = 1
grid.TileWidth = 250
Check "a width without an extent is nothing", grid.TileCountX = 1

Dim layer
Set layer = New VectorLayer
Set layer.AreaOfInterest = NewEnvelope(0, 0, 1000, 600)
Set grid.VectorLayer = layer
Set grid.VectorLayer = Nothing
grid.TileWidth = 250
grid.TileHeight = 200
Check "four columns", grid.TileCountX = 4
Check "three rows", grid.TileCountY = 3
Check "twelve tiles", grid.TileCount = 12
grid.Id = "layer7"
Set grid.StatusObject = New StatusDisplay
grid.InitializeTiles

y = 1
Check "tile (3, 1)", grid.GetTileID(3, y) = "grp2"
y = 2
Check "tile (1, 2)", grid.GetTileID(1, y) = "grp4"
Check "a name with the grid's prefix", grid.GetTileTStream(2, 1) = "layer7grp1"
Check "a name with a prefix of its own", grid.GetTileTStream(2, 1, "a") = "agrp1"
Check "the whole layer's name", grid.GetTileTStream(0, 0, "") = "layer7grp-1"
Set tile = grid.GetTileExtent(2, 1)
Set other = grid.GetTileExtent(2, 1)
Check "a tile's envelope is the same object", tile Is other
Check "its edges", tile.XMin = 250 And tile.XMax = 500 And tile.YMin = 0
Check "its depth", tile.Depth = 200 And tile.Height = 0
Set other = grid.GetTileExtent(0, 0)
Check "the whole layer", other.Width = 1000 And other.Depth = 600
Check "the whole layer is new on every call", Not (other Is grid.GetTileExtent(0, 0))
For row = 1 To 3
    For column = 1 To 4
        Set tile = grid.GetTileExtent(column, row)
        tile.Height = tile.Depth
    Next
Next
Set tile = grid.GetTileExtent(4, 3)
Check "heights stay set", tile.YMax = 600

Set where = New Point
where.X = 600
where.Y = 300
column = -1
row = -1
found = grid.IsInside(column, row, where)
Check "the point's tile is found", found
Check "and written back", column = 3 And row = 2
Check "as whole numbers", VarType(column) = 3 And VarType(row) = 3
column = 2
Check "another tile does not hold it", Not grid.IsInside(column, row, where)
Check "whose numbers stay", column = 2 And row = 2
where.X = 5000
column = -1
row = -1
found = grid.IsInside(column, row, where)
Check "east of the grid there is none", Not found And column = 5 And row = 4
Check "numbers that are no variables", grid.IsInside(3, 2, where) = False

Set line = New HorizontalLine
line.West = 510
line.East = 690
line.Y = 300
Set other = grid.Clip(3, 2, line)
Check "a line inside comes as a copy", Not (other Is line) And other.West = 510 And other.East = 690
line.West = 100
line.East = 600
Set other = grid.Clip(2, 2, line)
Check "a line across is cut", other.West = 250 And other.East = 500
Check "the line itself stays", line.West = 100 And line.East = 600
Check "a line elsewhere gives nothing", grid.Clip(4, 3, line) Is Nothing
Check "a point gives nothing", grid.Clip(3, 2, where) Is Nothing

Set other = grid.Clone
Check "a clone has the same tiles", other.TileCountX = 4 And other.TileCountY = 3
Check "a clone has no prefix", other.GetTileTStream(1, 1) = "grp0"
Set other = grid.Clone(NewEnvelope(0, 0, 500, 300))
Check "a clone over less", other.TileCountX = 2 And other.TileCountY = 2
Set other = CreateObject("Orvo_Tile.clsTileVector")
Set other.LayerExtent = NewEnvelope(0, 0, 1000, 600)
other.TileCountX = 8
other.TileCountY = 2
other.TileHeight = 300
other.InitializeTiles
Check "columns given", other.TileCountX = 8
Check "the row height goes into the width", other.GetTileExtent(1, 1).Width = 300

' --- the image class: a job on a system without a map platform ---

Dim image, status, folder, files, tiles, keys, source, raster
Set files = CreateObject("Scripting.FileSystemObject")
source = files.GetAbsolutePathName(WScript.Arguments(0))
folder = files.GetAbsolutePathName(WScript.Arguments(1))
Set raster = CreateObject("OrvoPlatform.RasterLayer")
raster.Open source
Set image = CreateObject("Orvo_Tile.clsTileImage")
Set tiles = image.TileObjectDict
Check "the dictionary is empty", tiles.Count = 0
Check "and the same on every call", tiles Is image.TileObjectDict
Check "nothing to cut", image.Tile = False
Set status = New StatusDisplay
Set image.StatusObject = status
image.SavePath = folder
image.GraphicFormat = "png"
image.GraphicConvertProg = ""
image.GraphicQuality = 75
image.ImageLayer raster, files.GetAbsolutePathName("none.png")
image.TileWidth = 32
image.TileHeight = 32
Check "an image that is not there", image.Tile = False And status.Starts = 0
image.ImageLayer raster
Check "the image is cut", image.Tile
Check "nine tiles", tiles.Count = 9
Check "the run was announced", status.Starts = 1 And status.Announced = 27 And status.Ends = 1
Check "with the image's name", Right(status.Title, Len(WScript.Arguments(0))) = WScript.Arguments(0)
Check "step by step", status.Steps >= 18
keys = tiles.Keys
For i = 0 To 8
    Set tile = tiles.Item(keys(i))
    WScript.Echo "tile " & keys(i) & " " & tile.XMin & " " & tile.YMin & " " & tile.XMax & " " & tile.YMax
Next
Check "the first tile lies in the upper left", tiles.Item(keys(0)).XMin = 1000 And tiles.Item(keys(0)).YMax = 2000
Check "the last one in the lower right", tiles.Item(keys(8)).XMax = 1085 And tiles.Item(keys(8)).YMin = 1925
Check "its file is there", files.FileExists(folder & "\" & keys(8))
Set image.ClipEnvelope = NewEnvelope(1000, 1990, 1085, 2010)
image.ImageLayer raster, source
Check "the upper row alone", image.Tile And tiles.Count = 12
Set image.ClipEnvelope = Nothing
Check "a folder is a workspace", image.GetWorkspace(folder).PathName = folder

' --- what fails ---

Dim failing
failing = Array("read Id", 438, "read LayerExtent", 438, "read TileWidth", 438, "read SavePath", 438, _
    "read GraphicQuality", 438, "write TileCount", 438, "write TileObjectDict", 438, "missing member", 438, _
    "too few", 449, "too many", 450, "text for number", 13, "too large", 6, "unset", 0)
For i = 0 To UBound(failing) Step 2
    id = ErrorOf(grid, image, failing(i))
    Check failing(i) & ": " & id, id = failing(i + 1)
Next

Set image = Nothing
Check "the dictionary outlives its object", tiles.Count = 12 And tiles.Exists(keys(0))

WScript.Echo "checks " & checks & " failed " & failures
