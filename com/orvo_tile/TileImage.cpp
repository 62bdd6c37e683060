#include "com/orvo_tile/TileImage.h"

#include "com/orvo_tile/ByReference.h"

namespace orvo::com {

STDMETHODIMP TileImage::putref_ClipEnvelope(IDispatch** objValue) {
    return Do([&] { image_.ClipEnvelope(windows::EnvelopeOf(ValueOf(objValue))); });
}

STDMETHODIMP TileImage::get_TileObjectDict(IDispatch** result) {
    return Do([&] {
        Checked(result) = nullptr;
        *result = windows::DispatchOf(image_.TileObjectDict());
    });
}

STDMETHODIMP TileImage::put_GraphicFormat(BSTR* NewValue) {
    return Do([&] { image_.GraphicFormat(TextOf(NewValue)); });
}

STDMETHODIMP TileImage::put_GraphicConvertProg(BSTR* NewValue) {
    return Do([&] { image_.GraphicConvertProg(TextOf(NewValue)); });
}

STDMETHODIMP TileImage::put_GraphicQuality(short* NewValue) {
    return Do([&] { image_.GraphicQuality(ValueOf(NewValue)); });
}

STDMETHODIMP TileImage::putref_StatusObject(::IStatusDisplay** NewValue) {
    return Do([&] { image_.StatusObject(StatusOf(NewValue)); });
}

STDMETHODIMP TileImage::ImageLayer(IDispatch** NewValue, BSTR* FileName) {
    return Do([&] { image_.ImageLayer(windows::RasterLayerOf(ValueOf(NewValue)), TextOf(FileName)); });
}

STDMETHODIMP TileImage::put_SavePath(BSTR* NewValue) {
    return Do([&] { image_.SavePath(TextOf(NewValue)); });
}

STDMETHODIMP TileImage::put_TileWidth(LONG Width) {
    return Do([&] { image_.TileWidth(Width); });
}

STDMETHODIMP TileImage::put_TileHeight(LONG Height) {
    return Do([&] { image_.TileHeight(Height); });
}

STDMETHODIMP TileImage::Tile(VARIANT_BOOL* result) {
    return Do([&] {
        Checked(result) = VARIANT_FALSE;
        *result = image_.Tile() ? VARIANT_TRUE : VARIANT_FALSE;
    });
}

STDMETHODIMP TileImage::GetWorkspace(BSTR* strDir, IDispatch** result) {
    return Do([&] {
        Checked(result) = nullptr;
        *result = windows::DispatchOf(image_.GetWorkspace(TextOf(strDir)));
    });
}

}  // namespace orvo::com
