// Objects of a host, made of named members.
#pragma once

#include <cwchar>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Check.h"

/// Answers every member that was given to it; objects live until their last reference is gone.
class HostObject final : public IDispatch {
  public:
    using Arguments = std::vector<VARIANT*>;  ///< in the order of the call
    using Method = std::function<HRESULT(const Arguments&, VARIANT* result)>;

    static inline int alive = 0;

    HostObject() { ++alive; }

    HostObject* With(const wchar_t* name, double number) {
        VARIANT value;
        value.vt = VT_R8;
        value.dblVal = number;
        values_[IdOf(name)] = value;
        return this;
    }
    HostObject* With(const wchar_t* name, long number) {
        VARIANT value;
        value.vt = VT_I4;
        value.lVal = number;
        values_[IdOf(name)] = value;
        return this;
    }
    HostObject* With(const wchar_t* name, const wchar_t* text) {
        VARIANT value;
        value.vt = VT_BSTR;
        value.bstrVal = SysAllocString(text);
        values_[IdOf(name)] = value;
        return this;
    }
    /// Takes over the object's reference.
    HostObject* With(const wchar_t* name, HostObject* object) {
        VARIANT value;
        value.vt = VT_DISPATCH;
        value.pdispVal = object;
        values_[IdOf(name)] = value;
        return this;
    }
    HostObject* Doing(const wchar_t* name, Method method) {
        methods_[IdOf(name)] = std::move(method);
        return this;
    }
    double Number(const wchar_t* name) { return values_[IdOf(name)].dblVal; }
    ULONG References() const { return references_; }

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IDispatch)) return E_NOINTERFACE;
        *object = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        for (const auto& [name, id] : ids_) {
            if (_wcsicmp(name.c_str(), *names) != 0) continue;
            *ids = id;
            return S_OK;
        }
        *ids = DISPID_UNKNOWN;
        return DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* given, VARIANT* result, EXCEPINFO*,
                        UINT*) override {
        if (methods_.contains(id)) {
            Arguments arguments;
            for (UINT i = given->cArgs; i > 0; --i) arguments.push_back(&given->rgvarg[i - 1]);
            return methods_[id](arguments, result);
        }
        if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0)
            return VariantCopy(&values_[id], &given->rgvarg[0]);
        return VariantCopy(result, &values_[id]);
    }

  private:
    ~HostObject() {
        --alive;
        for (auto& [id, value] : values_) VariantClear(&value);
    }
    DISPID IdOf(const wchar_t* name) {
        return ids_.try_emplace(name, static_cast<DISPID>(ids_.size() + 1)).first->second;
    }

    ULONG references_ = 1;
    std::map<std::wstring, DISPID> ids_;
    std::map<DISPID, VARIANT> values_;
    std::map<DISPID, Method> methods_;
};

inline HostObject* NewEnvelope(double xMin, double yMin, double width, double height) {
    auto* made = new HostObject;
    return made->With(L"XMin", xMin)
        ->With(L"YMin", yMin)
        ->With(L"XMax", xMin + width)
        ->With(L"YMax", yMin + height)
        ->With(L"Width", width)
        ->With(L"Height", height)
        ->With(L"Depth", 0.0)
        ->With(L"IsEmpty", 0L)
        ->With(L"GeometryType", 5L);
}

/// A raster of cells of 1 with its lower left corner at (0, 0).
inline HostObject* NewRasterLayer(const wchar_t* path, long columns, long rows) {
    auto* cell = (new HostObject)->With(L"X", 1.0)->With(L"Y", 1.0);
    auto* dataset = (new HostObject)->With(L"FormatName", L"BMP");
    auto* raster = (new HostObject)
                       ->With(L"Width", columns)
                       ->With(L"Height", rows)
                       ->With(L"MeanCellSize", cell)
                       ->With(L"RasterDataset", dataset);
    auto* extent = NewEnvelope(0, 0, static_cast<double>(columns), static_cast<double>(rows));
    return (new HostObject)->With(L"FilePath", path)->With(L"Raster", raster)->With(L"Extent", extent);
}

inline double NumberOf(IDispatch* object, const wchar_t* name) {
    std::wstring text = name;
    LPOLESTR names = text.data();
    DISPID id = 0;
    VARIANT value;
    VariantInit(&value);
    DISPPARAMS none{};
    if (FAILED(object->GetIDsOfNames(IID_NULL, &names, 1, 0, &id))) return -1e9;
    object->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr);
    VariantChangeType(&value, &value, 0, VT_R8);
    return value.dblVal;
}

inline void SetNumber(IDispatch* object, const wchar_t* name, double number) {
    std::wstring text = name;
    LPOLESTR names = text.data();
    DISPID id = 0;
    DISPID put = DISPID_PROPERTYPUT;
    VARIANT value;
    value.vt = VT_R8;
    value.dblVal = number;
    DISPPARAMS arguments{&value, &put, 1, 1};
    if (SUCCEEDED(object->GetIDsOfNames(IID_NULL, &names, 1, 0, &id)))
        object->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYPUT, &arguments, nullptr, nullptr, nullptr);
}
