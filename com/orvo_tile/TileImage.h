// clsTileImage for automation clients.
#pragma once

#include "com/orvo_tile/DualObject.h"
#include "tileimage/clsTileImage.h"

namespace orvo::com {

class TileImage final : public DualObject<_clsTileImage> {
  public:
    TileImage() : DualObject(L"Orvo_Tile.clsTileImage") {}

    STDMETHODIMP putref_ClipEnvelope(IDispatch** objValue) override;
    STDMETHODIMP get_TileObjectDict(IDispatch** result) override;
    STDMETHODIMP put_GraphicFormat(BSTR* NewValue) override;
    STDMETHODIMP put_GraphicConvertProg(BSTR* NewValue) override;
    STDMETHODIMP put_GraphicQuality(short* NewValue) override;
    STDMETHODIMP putref_StatusObject(::IStatusDisplay** NewValue) override;
    STDMETHODIMP ImageLayer(IDispatch** NewValue, BSTR* FileName) override;
    STDMETHODIMP put_SavePath(BSTR* NewValue) override;
    STDMETHODIMP put_TileWidth(LONG Width) override;
    STDMETHODIMP put_TileHeight(LONG Height) override;
    STDMETHODIMP Tile(VARIANT_BOOL* result) override;
    STDMETHODIMP GetWorkspace(BSTR* strDir, IDispatch** result) override;

  private:
    orvo::clsTileImage image_;
};

}  // namespace orvo::com
