// clsTileVector for automation clients.
#pragma once

#include <memory>

#include "com/orvo_tile/DualObject.h"
#include "tilevector/clsTileVector.h"

namespace orvo::com {

class TileVector final : public DualObject<_clsTileVector> {
  public:
    TileVector() : TileVector(std::make_shared<orvo::clsTileVector>()) {}
    explicit TileVector(std::shared_ptr<orvo::clsTileVector> grid);

    STDMETHODIMP Clone(IDispatch** objLayerExtent, _clsTileVector** result) override;
    STDMETHODIMP put_Id(BSTR strNewValue) override;
    STDMETHODIMP putref_StatusObject(::IStatusDisplay** NewValue) override;
    STDMETHODIMP putref_LayerExtent(IDispatch** NewValue) override;
    STDMETHODIMP putref_VectorLayer(IDispatch** NewValue) override;
    STDMETHODIMP put_TileCountX(LONG CountX) override;
    STDMETHODIMP get_TileCountX(LONG* result) override;
    STDMETHODIMP put_TileCountY(LONG CountY) override;
    STDMETHODIMP get_TileCountY(LONG* result) override;
    STDMETHODIMP put_TileWidth(LONG Width) override;
    STDMETHODIMP put_TileHeight(LONG Height) override;
    STDMETHODIMP get_TileCount(LONG* result) override;
    STDMETHODIMP InitializeTiles() override;
    STDMETHODIMP GetTileID(LONG lngNrX, LONG* lngNrY, BSTR* result) override;
    STDMETHODIMP GetTileExtent(LONG lngNrX, LONG* lngNrY, IDispatch** result) override;
    STDMETHODIMP GetTileTStream(LONG lngNrX, LONG lngNrY, BSTR strID, BSTR* result) override;
    STDMETHODIMP Clip(LONG lngX, LONG lngY, IDispatch** objInGeometry, IDispatch** result) override;
    STDMETHODIMP IsInside(LONG* lngX, LONG* lngY, IDispatch** objGeometry, VARIANT_BOOL* result) override;

  private:
    std::shared_ptr<orvo::clsTileVector> grid_;
};

}  // namespace orvo::com
