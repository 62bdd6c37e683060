// What the compiled clients share: counted checks, calls by name, and objects of a host.
#pragma once

#include <comdef.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <source_location>
#include <string>
#include <vector>

template <class Interface>
const IID& IdOfInterface() {
    return __uuidof(Interface);
}
/// A counted reference.
template <class Interface>
using Ref = _com_ptr_t<_com_IIID_getter<Interface, IdOfInterface<Interface>>>;

inline int checks = 0;
inline int failures = 0;

/// Each failing check is named by its line.
inline void Check(bool holds, const std::source_location& at = std::source_location::current()) {
    ++checks;
    if (holds) return;
    ++failures;
    std::printf("FAILED: %s:%u\n", at.file_name(), static_cast<unsigned>(at.line()));
}

/// The last line holds the counts.
inline int Summary() {
    std::printf("checks %d failed %d\n", checks, failures);
    return failures == 0 ? 0 : 1;
}

/// What a call by name gave.
struct Answer {
    HRESULT code = DISP_E_UNKNOWNNAME;
    _variant_t value;
    EXCEPINFO exception{};
    UINT wrong = 99;

    /// It succeeded with that value, of that type.
    bool Is(const _variant_t& expected) const { return code == S_OK && value == expected; }
};

inline DISPID IdOf(IDispatch* object, std::wstring name) {
    LPOLESTR names = name.data();
    DISPID id = DISPID_UNKNOWN;
    object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
    return id;
}

/// @param names the places of the arguments that are named; these come first in the list, which runs
/// backwards
inline Answer Do(IDispatch* object, WORD flags, const wchar_t* name, std::vector<_variant_t> arguments = {},
                 std::vector<DISPID> names = {}) {
    std::reverse(arguments.begin(), arguments.end());
    DISPPARAMS given{arguments.data(), names.data(), static_cast<UINT>(arguments.size()),
                     static_cast<UINT>(names.size())};
    Answer answer;
    answer.code = object->Invoke(IdOf(object, name), IID_NULL, LOCALE_USER_DEFAULT, flags, &given,
                                 &answer.value, &answer.exception, &answer.wrong);
    return answer;
}
inline Answer Call(IDispatch* object, const wchar_t* name, const std::vector<_variant_t>& arguments = {}) {
    return Do(object, DISPATCH_METHOD, name, arguments);
}
inline Answer Get(IDispatch* object, const wchar_t* name) {
    return Do(object, DISPATCH_PROPERTYGET, name);
}
inline HRESULT Put(IDispatch* object, const wchar_t* name, const _variant_t& value) {
    return Do(object, DISPATCH_PROPERTYPUT, name, {value}, {DISPID_PROPERTYPUT}).code;
}
inline HRESULT PutRef(IDispatch* object, const wchar_t* name, IDispatch* value) {
    return Do(object, DISPATCH_PROPERTYPUTREF, name, {value}, {DISPID_PROPERTYPUT}).code;
}
inline double Number(IDispatch* object, const wchar_t* name) {
    return Get(object, name).value;
}

/// Counts references; answers for one interface, and nothing by name.
template <class Interface>
class HostBase : public Interface {
  public:
    static inline int alive = 0;

    HostBase() { ++alive; }
    HostBase(const HostBase&) = delete;
    HostBase& operator=(const HostBase&) = delete;
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool known = id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(Interface);
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }
    ULONG References() const { return references_; }

  protected:
    virtual ~HostBase() { --alive; }

  private:
    ULONG references_ = 0;
};

using Method = std::function<HRESULT(VARIANT* arguments, VARIANT* result)>;

/// A member of a host's object: a value that may be put, or a method.
struct HostMember {
    std::wstring name;
    _variant_t value;
    Method method = nullptr;
};

class HostObject final : public HostBase<IDispatch> {
  public:
    explicit HostObject(std::vector<HostMember> members) : members_(std::move(members)) {}

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        for (DISPID id = 0; id < static_cast<DISPID>(members_.size()); ++id)
            if (members_[id].name == *names) return *ids = id, S_OK;
        return DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* given, VARIANT* result, EXCEPINFO*,
                        UINT*) override {
        HostMember& member = members_[id];
        if (member.method) return member.method(given->rgvarg, result);
        const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
        return put ? VariantCopy(&member.value, given->rgvarg) : VariantCopy(result, &member.value);
    }

  private:
    std::vector<HostMember> members_;
};

/// A value that holds a new object with those members.
inline _variant_t Host(std::vector<HostMember> members) {
    return static_cast<IDispatch*>(new HostObject(std::move(members)));
}

inline ULONG References(const _variant_t& object) {
    return static_cast<HostObject*>(object.pdispVal)->References();
}

inline _variant_t NewEnvelope(double width, double height) {
    return Host({{L"XMin", 0.0},
                 {L"YMin", 0.0},
                 {L"XMax", width},
                 {L"YMax", height},
                 {L"Width", width},
                 {L"Height", height},
                 {L"Depth", 0.0},
                 {L"IsEmpty", false},
                 {L"GeometryType", 5}});
}

/// A raster of cells of 1 with its lower left corner at (0, 0).
inline _variant_t NewRasterLayer(const std::wstring& path, int columns, int rows) {
    const _variant_t raster = Host({{L"Width", columns},
                                    {L"Height", rows},
                                    {L"MeanCellSize", Host({{L"X", 1.0}, {L"Y", 1.0}})},
                                    {L"RasterDataset", Host({{L"FormatName", L"BMP"}})}});
    return Host({{L"FilePath", path.c_str()}, {L"Raster", raster}, {L"Extent", NewEnvelope(columns, rows)}});
}

/// A point that lies in the tile with that lower left corner; counts the tiles that it was asked about.
inline _variant_t NewPoint(double x, double y, double tileX, double tileY, int& asked) {
    const Method within = [=, &asked](VARIANT* arguments, VARIANT* result) {
        IDispatch* tile = arguments[0].pdispVal;
        const bool holds = Number(tile, L"XMin") == tileX && Number(tile, L"YMin") == tileY;
        ++asked;
        *result = _variant_t(holds).Detach();
        return S_OK;
    };
    return Host({{L"GeometryType", 1}, {L"X", x}, {L"Y", y}, {L"Within", {}, within}});
}

/// Gives each of the 4 × 3 tiles its height.
inline void SetHeights(IDispatch* grid, double height) {
    for (int i = 0; i < 12; ++i)
        Put(Call(grid, L"GetTileExtent", {i % 4 + 1, i / 4 + 1}).value.pdispVal, L"Height", height);
}

inline std::wstring TempFolder() {
    return _wgetenv(L"TEMP");
}

/// The reports of all failures so far.
inline std::string Log() {
    std::ifstream log(std::filesystem::path(TempFolder()) / "Orvo_Tile.EPT", std::ios::binary);
    return {std::istreambuf_iterator<char>(log), {}};
}
