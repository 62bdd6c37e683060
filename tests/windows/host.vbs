' A host with classes of its own: the component asks its utility library and envelopes by name.
' cscript host.vbs FOLDER PROGRAM: the program copies its first argument to its second.
Option Explicit
Dim made, failed, layer, image, clip, name, tiles, files
made = 0
failed = 0

Sub Equal(what, found, expected)
    made = made + 1
    If CStr(found) <> CStr(expected) Then
        failed = failed + 1
        WScript.Echo what & ": " & found & " instead of " & expected
    End If
End Sub

Function Edges(e)
    Edges = e.XMin & " " & e.YMin & " " & e.XMax & " " & e.YMax
End Function

Set files = CreateObject("Scripting.FileSystemObject")
Set layer = CreateObject("OrvoPlatform.RasterLayer")
layer.Open "image.png"
Set clip = CreateObject("OrvoPlatform.Envelope")
clip.XMin = layer.Extent.XMin + layer.Raster.MeanCellSize.X * 10
clip.XMax = layer.Extent.XMax
clip.YMin = layer.Extent.YMin
clip.YMax = layer.Extent.YMax
Set image = CreateObject("Orvo_Tile.clsTileImage")
image.SavePath = WScript.Arguments(0)
image.GraphicFormat = "png"
image.GraphicConvertProg = WScript.Arguments(1)
Set image.ClipEnvelope = clip
image.ImageLayer layer
image.TileWidth = -1
image.TileHeight = -1

Equal "converted", image.Tile, True
Set tiles = image.TileObjectDict
Equal "one tile", tiles.Count, 1
For Each name In tiles.Keys
    Equal "the clip's part", Edges(tiles.Item(name)), Edges(clip)
    Equal "the converter's file", files.FileExists(WScript.Arguments(0) & "\" & name), True
Next
image.GraphicConvertProg = ""
Equal "exported", image.Tile, True
Equal "two tiles", tiles.Count, 2
Equal "nothing else is left", files.GetFolder(WScript.Arguments(0)).Files.Count, 2
WScript.Echo "checks " & made & " failed " & failed
