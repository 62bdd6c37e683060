' client.vbs SOURCE FOLDER PROGRAM: a script that knows ProgIDs and member names only. It cuts SOURCE into FOLDER with the
' converter PROGRAM, or the built-in export where that is "", and names each tile with its edges.
' The last line says that it came to its end, and what failed.
Option Explicit

Dim failures
failures = 0

Sub Check(what, holds)
    If Not holds Then
        failures = failures + 1
        WScript.Echo "FAILED: " & what
    End If
End Sub

Class Point
    Public GeometryType
    Public X
    Public Y
    Public Function Within(tile)
        Within = X > tile.XMin And X < tile.XMax And Y > tile.YMin And Y < tile.YMax
    End Function
End Class

Class StatusDisplay
    Public Log
    Public Steps
    Public Sub ShowProgress(text, maxValue, isStep)
        If isStep Then Steps = Steps + 1 Else Log = Log & text & "|" & maxValue & "|"
    End Sub
End Class

' --- the vector class, and a script's own geometry ---

Dim grid, extent, where, column, row
Set extent = CreateObject("OrvoPlatform.Envelope")
extent.XMin = 0
extent.XMax = 1000
extent.YMin = 0
extent.YMax = 600
Set grid = CreateObject("Orvo_Tile.clsTileVector")
Set grid.LayerExtent = extent
Set grid.VectorLayer = Nothing
grid.TileWidth = 250
grid.TileHeight = 200
grid.InitializeTiles
For row = 1 To 3
    For column = 1 To 4
        grid.GetTileExtent(column, row).Height = grid.GetTileExtent(column, row).Depth
    Next
Next
row = 2
Check "a variable by reference", grid.GetTileID(1, row) = "grp4"
Set where = New Point
where.GeometryType = 1
where.X = 600
where.Y = 300
column = -1
row = -1
Check "the point's tile is found", grid.IsInside(column, row, where)
Check "and written back", column = 3 And row = 2 And VarType(column) = 3 And VarType(row) = 3
Check "numbers that are no variables", grid.IsInside(3, 2, where)

' --- the image class: a job on a system without a map platform ---

Dim image, status, folder, files, tile, tiles, keys, raster, i
Set image = CreateObject("Orvo_Tile.clsTileImage")
Set files = CreateObject("Scripting.FileSystemObject")
folder = files.GetAbsolutePathName(WScript.Arguments(1))
Set raster = CreateObject("OrvoPlatform.RasterLayer")
raster.Open files.GetAbsolutePathName(WScript.Arguments(0))
Set tiles = image.TileObjectDict
Check "the dictionary is the same on every call", tiles.Count = 0 And tiles Is image.TileObjectDict
Set status = New StatusDisplay
Set image.StatusObject = status
image.SavePath = folder
image.GraphicFormat = "png"
image.GraphicConvertProg = WScript.Arguments(2)
image.GraphicQuality = 75
image.ImageLayer raster, files.GetAbsolutePathName("none.png")
image.TileWidth = 32
image.TileHeight = 32
Check "an image that is not there", image.Tile = False And status.Log = ""
image.ImageLayer raster
Check "the image is cut", image.Tile
Check "the run is shown", status.Log = "Tiling                       " & WScript.Arguments(0) & "|27||0|" And status.Steps >= 18
keys = tiles.Keys
For i = 0 To UBound(keys)
    Set tile = tiles.Item(keys(i))
    WScript.Echo "tile " & keys(i) & " " & tile.XMin & " " & tile.YMin & " " & tile.XMax & " " & tile.YMax
Next
Check "nothing else is left", files.GetFolder(folder).Files.Count = 9
Check "a folder is a workspace", image.GetWorkspace(folder).PathName = folder
Set image = Nothing
Check "the dictionary outlives its object", tiles.Count = 9 And tiles.Exists(keys(0))

WScript.Echo "end failed " & failures
