#include "com/orvo_tile/TileVector.h"

#include <utility>

#include "com/orvo_tile/ByReference.h"

namespace orvo::com {

TileVector::TileVector(std::shared_ptr<orvo::clsTileVector> grid)
    : DualObject(L"Orvo_Tile.clsTileVector"), grid_(std::move(grid)) {}

STDMETHODIMP TileVector::Clone(IDispatch** objLayerExtent, _clsTileVector** result) {
    return Do([&] {
        Checked(result) = nullptr;
        auto copy = grid_->Clone(windows::EnvelopeOf(ValueOf(objLayerExtent)));
        if (copy) *result = new TileVector(std::move(copy));
    });
}

STDMETHODIMP TileVector::put_Id(BSTR strNewValue) {
    return Do([&] { grid_->Id(TextOf(strNewValue)); });
}

STDMETHODIMP TileVector::putref_StatusObject(::IStatusDisplay** NewValue) {
    return Do([&] { grid_->StatusObject(StatusOf(NewValue)); });
}

STDMETHODIMP TileVector::putref_LayerExtent(IDispatch** NewValue) {
    return Do([&] { grid_->LayerExtent(windows::EnvelopeOf(ValueOf(NewValue))); });
}

STDMETHODIMP TileVector::putref_VectorLayer(IDispatch** NewValue) {
    return Do([&] { grid_->VectorLayer(windows::LayerOf(ValueOf(NewValue))); });
}

STDMETHODIMP TileVector::put_TileCountX(LONG CountX) {
    return Do([&] { grid_->TileCountX(CountX); });
}

STDMETHODIMP TileVector::get_TileCountX(LONG* result) {
    return Do([&] { Checked(result) = std::as_const(*grid_).TileCountX(); });
}

STDMETHODIMP TileVector::put_TileCountY(LONG CountY) {
    return Do([&] { grid_->TileCountY(CountY); });
}

STDMETHODIMP TileVector::get_TileCountY(LONG* result) {
    return Do([&] { Checked(result) = std::as_const(*grid_).TileCountY(); });
}

STDMETHODIMP TileVector::put_TileWidth(LONG Width) {
    return Do([&] { grid_->TileWidth(Width); });
}

STDMETHODIMP TileVector::put_TileHeight(LONG Height) {
    return Do([&] { grid_->TileHeight(Height); });
}

STDMETHODIMP TileVector::get_TileCount(LONG* result) {
    return Do([&] { Checked(result) = grid_->TileCount(); });
}

STDMETHODIMP TileVector::InitializeTiles() {
    return Do([&] { grid_->InitializeTiles(); });
}

STDMETHODIMP TileVector::GetTileID(LONG lngNrX, LONG* lngNrY, BSTR* result) {
    return Do([&] {
        Checked(result) = nullptr;
        *result = NewBstr(grid_->GetTileID(lngNrX, ValueOf(lngNrY)));
    });
}

STDMETHODIMP TileVector::GetTileExtent(LONG lngNrX, LONG* lngNrY, IDispatch** result) {
    return Do([&] {
        Checked(result) = nullptr;
        *result = windows::DispatchOf(grid_->GetTileExtent(lngNrX, ValueOf(lngNrY)));
    });
}

STDMETHODIMP TileVector::GetTileTStream(LONG lngNrX, LONG lngNrY, BSTR strID, BSTR* result) {
    return Do([&] {
        Checked(result) = nullptr;
        *result = NewBstr(grid_->GetTileTStream(lngNrX, lngNrY, TextOf(strID)));
    });
}

STDMETHODIMP TileVector::Clip(LONG lngX, LONG lngY, IDispatch** objInGeometry, IDispatch** result) {
    return Do([&] {
        Checked(result) = nullptr;
        *result = windows::DispatchOf(grid_->Clip(lngX, lngY, windows::GeometryOf(ValueOf(objInGeometry))));
    });
}

STDMETHODIMP TileVector::IsInside(LONG* lngX, LONG* lngY, IDispatch** objGeometry, VARIANT_BOOL* result) {
    return Do([&] {
        Checked(result) = VARIANT_FALSE;
        NumberByReference column(Checked(lngX));
        NumberByReference row(Checked(lngY));
        const bool inside =
            grid_->IsInside(column.value, row.value, windows::GeometryOf(ValueOf(objGeometry)));
        *result = inside ? VARIANT_TRUE : VARIANT_FALSE;
    });
}

}  // namespace orvo::com
