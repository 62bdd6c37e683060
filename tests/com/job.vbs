' A raster job on a bare system, and where its tiles lie: job.vbs SOURCE FOLDER TILESIZE. One line per tile, file and
' edges; the last line holds the checks.
Option Explicit
Dim files, layer, image, tiles, keys, i, envelope
Set files = CreateObject("Scripting.FileSystemObject")
Set layer = CreateObject("OrvoPlatform.RasterLayer")
layer.Open files.GetAbsolutePathName(WScript.Arguments(0))
Set image = CreateObject("Orvo_Tile.clsTileImage")
image.SavePath = files.GetAbsolutePathName(WScript.Arguments(1))
image.GraphicFormat = "png"
image.GraphicQuality = 75
image.GraphicConvertProg = ""
image.ImageLayer layer
image.TileWidth = CLng(WScript.Arguments(2))
image.TileHeight = CLng(WScript.Arguments(2))
Dim done
done = image.Tile
Set tiles = image.TileObjectDict
keys = tiles.Keys
For i = 0 To tiles.Count - 1
    Set envelope = tiles.Item(keys(i))
    WScript.Echo "tile " & keys(i) & " " & envelope.XMin & " " & envelope.YMin & " " & envelope.XMax & " " & envelope.YMax
Next
If done And tiles.Count = 9 Then
    WScript.Echo "checks 1 failed 0"
Else
    WScript.Echo "checks 1 failed 1"
End If
